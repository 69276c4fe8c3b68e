// BridgeShapes for where a cell is: {"book", "sheet", "addr"} in payloads and events. Pure
// functions for any thread.
#pragma once

#include <optional>
#include <string>

#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// A cell as Excel names it. Compared by its bytes.
struct CellPlace {
  std::string book, sheet, address;
  bool operator==(const CellPlace&) const = default;
};

// None unless all three members are texts; others may stand beside them.
std::optional<CellPlace> cellPlace(const JSONValue& payload);

JSONValue payloadOf(const CellPlace& place);

}  // namespace quorin::BridgeShapes
