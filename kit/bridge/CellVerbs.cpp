// The verbs that read one cell: "probe", "readCell", "pollCell".
#include <exception>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/LoggedError.h"
#include "kit/shapes/CellShapes.h"

namespace quorin {

namespace {

constexpr double probeBudget = 3;
constexpr double readBudget = 10;
constexpr double pollBudget = 3;

JSONValue stateObject(const std::string& state) {
  return JSONValue::Object{{"state", state}};
}

}  // namespace

JSONValue Bridge::probe() {
  try {
    if (!excelRunning()) return stateObject("notRunning");
    return BridgeShapes::probeObject(thread_.call("qx_probe", {}, probeBudget));
  } catch (const ExcelError& error) {
    log_.log("ERROR", "probe: " + std::to_string(error.code()) + ": " + loggedText(error));
    return stateObject(BridgeShapes::probeState(error.code()));
  } catch (const std::exception&) {
    return stateObject("busy");
  }
}

JSONValue Bridge::readCell() {
  return BridgeShapes::readCellObject(thread_.call("qx_readcell", {}, readBudget));
}

JSONValue Bridge::pollCell() {
  return BridgeShapes::pollCellObject(thread_.call("qx_pollcell", {}, pollBudget));
}

}  // namespace quorin
