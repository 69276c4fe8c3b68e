// TableItems: what stands in the brackets behind a table's name. Pure functions over text.
//
//   Sales[Net]   Sales[[#Headers],[Net]:[Tax]]   Sales[@[Net Sum]]   Sales[#All]   Sales[]
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorin::host::calc {

struct TableItems {
  bool all = false, data = false, headers = false, totals = false, thisRow = false;
  std::string firstColumn = {}, lastColumn = {};  // unescaped; both empty for every column
  bool operator==(const TableItems&) const = default;
};

// Reads the brackets at `position` and moves it behind them. Nothing when they are not closed or
// hold something else. No item at all means the data.
std::optional<TableItems> readTableItems(std::string_view text, std::size_t& position);

// The brackets at `position` in Calc's stored grammar as Excel writes them, which parts two items
// by a comma, and in its spelling of items; moves behind them, or to the end when they are open.
void appendExcelTableItems(std::string& excel, std::string_view calc, std::size_t& position);

}  // namespace quorin::host::calc
