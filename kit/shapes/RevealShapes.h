// BridgeShapes for bringing a cell into view: where the target and the window are, what hides the
// target and whether and where to scroll. Pure functions for any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/shapes/HiddenRuns.h"
#include "kit/shapes/Rect.h"
#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

struct RevealRead {
  Rect visible;  // of the active window
  Rect target;
  std::string activeSheet;
  std::string targetSheet;
  // True if all of the target's rows, or columns, are hidden. False when none or some are, absent
  // when not known.
  std::optional<bool> rowsHidden;
  std::optional<bool> colsHidden;
  std::vector<Rect> visibleAreas;  // of the target; empty when none or not known

  bool operator==(const RevealRead&) const = default;
};

// From the list of qx_revealread, or its first nine items alone. Throws ShapeError.
RevealRead revealRead(const std::string& targetSheet, const JSONValue& answer);

// The hidden rows and columns of the target.
HiddenRuns rawRuns(const RevealRead& read);

struct RevealScroll {
  std::int64_t row = 0;
  std::int64_t col = 0;
  bool activate = false;  // the target's sheet is not the active one
  bool operator==(const RevealScroll&) const = default;
};

// Where to scroll to; none when the target is in view.
using RevealDecision = std::optional<RevealScroll>;
RevealDecision revealDecision(const RevealRead& read);

}  // namespace quorin::BridgeShapes
