// The verbs that read much at once: "readRange", "readFormulas", "workbookMap".
#include "kit/bridge/Bridge.h"
#include "kit/shapes/RangeShapes.h"
#include "kit/shapes/WorkbookShapes.h"

namespace quorin {

namespace {

constexpr double readBudget = 10;

}  // namespace

JSONValue Bridge::readRange(const std::string& addr) {
  return BridgeShapes::decodeReadRange(addr, thread_.call("qx_readrange", {addr}, readBudget));
}

JSONValue Bridge::readFormulas(const std::string& addr, const std::string& style,
                               bool formulasOnly) {
  return BridgeShapes::decodeReadFormulas(
      addr, thread_.call("qx_readformulas", {addr, style, formulasOnly}, readBudget));
}

JSONValue Bridge::workbookMap() {
  return BridgeShapes::workbookMapObject(thread_.call("qx_workbookmap", {}, readBudget));
}

}  // namespace quorin
