// The verbs that read one cell: "probe", "readCell", "pollCell".
#include <exception>

#include "kit/bridge/Bridge.h"
#include "kit/bridge/LoggedError.h"
#include "kit/shapes/CellShapes.h"

namespace quorin {

namespace {

JSONValue stateObject(const std::string& state) {
  return JSONValue::Object{{"state", state}};
}

}  // namespace

JSONValue Bridge::probe() {
  try {
    if (!excelRunning()) return stateObject("notRunning");
    return BridgeShapes::probeObject(call("probe", "qx_probe", {}));
  } catch (const ExcelError& error) {
    log_.log("ERROR", "probe: " + std::to_string(error.code()) + ": " + loggedText(error));
    return stateObject(BridgeShapes::probeState(error.code()));
  } catch (const std::exception&) {
    return stateObject("busy");
  }
}

JSONValue Bridge::readCell() {
  return BridgeShapes::readCellObject(call("readCell", "qx_readcell", {}));
}

JSONValue Bridge::pollCell() {
  return BridgeShapes::pollCellObject(call("pollCell", "qx_pollcell", {}));
}

}  // namespace quorin
