// The texts by which Excel shows an error cell. The order of the first eight is that of Excel's
// ERROR.TYPE numbers, 1 to 8. The handler library's own list is generated from this table.
#pragma once

#include <array>
#include <string_view>

namespace quorin::BridgeShapes {

inline constexpr std::array<std::string_view, 17> errorLiterals = {
    "#NULL!",    "#DIV/0!",       "#VALUE!",    "#REF!",    "#NAME?",  "#NUM!",
    "#N/A",      "#GETTING_DATA", "#SPILL!",    "#CALC!",   "#FIELD!", "#CONNECT!",
    "#BLOCKED!", "#UNKNOWN!",     "#EXTERNAL!", "#PYTHON!", "#BUSY!",
};

// The error text of an ERROR.TYPE number: 1 to 8 by the table, "#UNKNOWN!" for any other.
std::string_view errorLiteral(long long errorType);

}  // namespace quorin::BridgeShapes
