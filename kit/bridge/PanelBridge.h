// PanelBridge: what the panel, the poller and the application ask of the bridge. It exists so that
// they can be tried without a spreadsheet. All calls come from the bridge queue but for those that
// say otherwise.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "kit/shapes/CellPlace.h"
#include "kit/value/JSONValue.h"

namespace quorin {

class PanelBridge {
 public:
  using ActivatedCell = std::function<void(const BridgeShapes::CellPlace& cell)>;

  // What a request is answered with. The payload of a failure is an error object, {"kind",
  // "message"} and perhaps "code".
  struct Reply {
    bool ok = false;
    JSONValue payload;
    bool operator==(const Reply&) const = default;
  };

  virtual ~PanelBridge() = default;

  // Answers a request of the page. Never throws.
  virtual Reply dispatch(const std::string& verb, const JSONValue::Array& args) = 0;

  // {"book", "sheet", "addr"} of the active cell. Throws what the call threw.
  virtual JSONValue pollCell() = 0;

  // Where Excel's window is and in what state Excel is. Never throws.
  virtual JSONValue probe() = 0;

  // The argument separator of formulas that are written from now on.
  virtual void setArgSeparator(const std::string& separator) = 0;

  // Takes back the marks that an earlier run left behind. Never throws.
  virtual void restoreStranded() = 0;

  // Any thread: when the bridge itself last moved Excel's selection.
  virtual std::chrono::system_clock::time_point lastProgrammaticNav() const = 0;

  // Before the first request. The handler is called on the bridge queue with each cell that the
  // bridge has moved Excel to.
  virtual void setOnActivatedCell(ActivatedCell handler) = 0;

  // What the records of marks hold.
  struct Recorded {
    std::int64_t cells = 0;  // marked ones, each counted once
    std::int64_t names = 0;  // what is marked by a name, of however many cells
    std::int64_t rows = 0;   // shown ones
    std::int64_t columns = 0;

    bool isEmpty() const { return *this == Recorded{}; }
    bool operator==(const Recorded&) const = default;
  };

  // Main thread, at the end: what there is to take back, by the records alone. Nothing where Excel
  // does not run. Never throws.
  virtual Recorded leftToTakeBack() const = 0;

  // Main thread, once, at the end: takes back every mark within two seconds.
  virtual void clearMarksForTerminate() = 0;
};

}  // namespace quorin
