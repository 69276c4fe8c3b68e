// StoredWorkbook: what an .xlsx file holds, read from its XML without any spreadsheet program:
// formulas as they are stored and the values that were cached with them. For tests.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::xlsx {

enum class FormulaKind { none, plain, array, dataTable };

struct StoredCell {
  host::CellValue value;  // Blank where the file keeps no value
  // With "=" in front, in the file's own grammar: functions of newer releases prefixed, other
  // workbooks by number. That of a follower of a shared formula is worked out. Empty for constants,
  // for the cells of an array but its first, and for data tables.
  std::string formula;
  FormulaKind kind = FormulaKind::none;
};

struct StoredSheet {
  std::string name;
  std::map<std::pair<int, int>, StoredCell> cells;  // by row and column, 1-based
};

struct StoredWorkbook {
  std::vector<StoredSheet> sheets;     // worksheets alone, in the order of the tabs
  std::vector<std::string> externals;  // file names of the other workbooks; [1] is the first
};

// Throws std::runtime_error.
StoredWorkbook readWorkbook(const std::filesystem::path& file);

// A formula as the cell `rows` below and `columns` beside would share it: relative references
// move, and wrap around at the sheet's edges. Without "=".
std::string movedFormula(const std::string& formula, int rows, int columns);

}  // namespace quorin::xlsx
