// BridgeShapes for address texts. Pure functions for any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorin::BridgeShapes {

// The number of areas in an address text: one more than its area separators. A comma or semicolon
// separates outside single quotes (sheet names) and square brackets (workbook names). An empty
// text has no area, so 0.
int selectionAreaCount(std::string_view address);

struct SheetAddress {
  std::optional<std::string> sheet;
  std::string addr;
  bool operator==(const SheetAddress&) const = default;
};

// Takes the sheet off an address: Sheet1!A1, 'It''s'!A1. A quoted name that is never closed by '!
// is no sheet.
SheetAddress parseSheetAddr(std::string_view address);

// The addresses of one sheet, without it.
struct SheetGroup {
  std::string sheet;
  std::vector<std::string> addrs;
  bool operator==(const SheetGroup&) const = default;
};

// The addresses by sheet, sheets in the order of first appearance. Those without a sheet belong to
// the first sheet that any address names, or else to the active one.
std::vector<SheetGroup> groupBySheet(const std::vector<std::string>& addrs,
                                     const std::string& active);

// The address without any "$".
std::string stripDollars(std::string_view address);

}  // namespace quorin::BridgeShapes
