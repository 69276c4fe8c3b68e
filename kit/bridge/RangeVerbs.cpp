// The verbs that read much at once: "readRange", "readTexts", "readFormulas", "workbookMap".
#include "kit/bridge/Bridge.h"
#include "kit/shapes/RangeShapes.h"
#include "kit/shapes/WorkbookShapes.h"

namespace quorin {

JSONValue Bridge::readRange(const std::string& addr) {
  return BridgeShapes::decodeReadRange(addr, call("readRange", "qx_readrange", {addr}));
}

JSONValue Bridge::readTexts(const std::vector<std::string>& addrs) {
  Args arguments;
  arguments.emplace_back(JSONValue::Array(addrs.begin(), addrs.end()));
  return BridgeShapes::decodeReadTexts(addrs.size(), call("readTexts", "qx_readtexts", arguments));
}

JSONValue Bridge::readFormulas(const std::string& addr, const std::string& style,
                               bool formulasOnly) {
  return BridgeShapes::decodeReadFormulas(
      addr, call("readFormulas", "qx_readformulas", {addr, style, formulasOnly}));
}

JSONValue Bridge::workbookMap() {
  return BridgeShapes::workbookMapObject(call("workbookMap", "qx_workbookmap", {}));
}

}  // namespace quorin
