// BridgeShapes for the panel: where it goes beside Excel, and when it comes and goes with Excel.
// Pure functions for any thread.
#pragma once

#include <optional>
#include <string_view>

#include "kit/shapes/ScreenGeometry.h"
#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// Excel's front window as Excel reports it: left, top, right, bottom in points, the origin at the
// top left of the main screen, y growing downwards.
struct WindowBounds {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  bool operator==(const WindowBounds&) const = default;
};

// The panel's frame beside Excel: its left edge on Excel's right edge, its top level with Excel's,
// then moved inside `visible`. A panel that is larger than the visible frame ends on its left and
// on its bottom edge. The size stays. `screenHeight` is that of the screen with the menu bar.
ScreenFrame panelFrameBesideExcel(const WindowBounds& excel, double screenHeight,
                                  const ScreenFrame& visible, const ScreenSize& size);

// The member "excelWindow" of a probe's payload; none when it or one of its numbers is missing.
std::optional<WindowBounds> windowBounds(const JSONValue& probe);

enum class CompanionAction { show, hide, ignore };

// What the panel does when an application has come to the front.
CompanionAction companionAction(bool frontIsExcel, bool frontIsSelf, bool enabled,
                                bool panelVisible);

std::string_view name(CompanionAction action);

}  // namespace quorin::BridgeShapes
