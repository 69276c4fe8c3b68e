// The verbs that read much at once: "readRange", "readTexts", "readFormulas", "workbookMap".
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

JSONValue Bridge::readTexts(const std::vector<std::string>& addrs) {
  Args arguments;
  arguments.emplace_back(JSONValue::Array(addrs.begin(), addrs.end()));
  return BridgeShapes::decodeReadTexts(addrs.size(),
                                       thread_.call("qx_readtexts", arguments, readBudget));
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
