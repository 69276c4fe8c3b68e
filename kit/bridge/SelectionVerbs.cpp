// The verbs that move Excel's selection or follow references from it: "select", "activate",
// "dependents".
#include <exception>

#include "kit/bridge/Bridge.h"
#include "kit/shapes/AddressShapes.h"
#include "kit/shapes/ShapeError.h"

namespace quorin {

JSONValue Bridge::select(const std::vector<std::string>& addrs) {
  Args arguments;
  arguments.emplace_back(JSONValue::Array(addrs.begin(), addrs.end()));
  const JSONValue result = call("select", "qx_select", arguments);
  const std::string* const address = result.string();
  if (!address) throw BridgeShapes::ShapeError("select returned no address");
  JSONValue payload = JSONValue::Object{{"areas", BridgeShapes::selectionAreaCount(*address)}};
  touchProgrammaticNav();
  return payload;
}

JSONValue Bridge::activate(const std::optional<std::string>& addr) {
  touchProgrammaticNav();
  call("activate", "qx_activate", {addr.value_or("")});
  try {
    publishLanded(pollCell());
  } catch (const std::exception&) {
    // Excel has gone there; where that is, the next poll will tell.
  }
  touchProgrammaticNav();
  return true;
}

JSONValue Bridge::dependents(const std::string& addr) {
  JSONValue result = call("dependents", "qx_dependents", {addr});
  if (!result.string())
    throw BridgeShapes::ShapeError("dependents returned no address for '" + addr + "'");
  return result;
}

}  // namespace quorin
