// BridgeShapes for address texts. Pure functions for any thread.
#pragma once

#include <string>
#include <string_view>

namespace quorin::BridgeShapes {

// The number of areas in an address text: one more than its area separators. A comma or semicolon
// separates outside single quotes (sheet names) and square brackets (workbook names). An empty
// text has no area, so 0.
int selectionAreaCount(std::string_view address);

// The address without any "$".
std::string stripDollars(std::string_view address);

}  // namespace quorin::BridgeShapes
