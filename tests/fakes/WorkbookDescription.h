// WorkbookDescription: a small workbook in plain values, from which a test builds it in whatever
// program it tests: in memory, or in a real spreadsheet.
#pragma once

#include <string>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::fakes {

struct CellDescription {
  std::string address;            // "B2"
  host::CellValue value;          // a constant, or what the formula gives
  std::string formula = {};       // in English with its "="; empty for a constant
  std::string localFormula = {};  // in the user's grammar; empty: the same as `formula`
  std::string text = {};          // as displayed; empty: made from the value
};

struct ConditionDescription {
  std::string addresses;  // "A1:A3,C5"
  std::string formula;    // with its "="; of a condition on the cells' values, what they are above
  host::ConditionKind kind = host::ConditionKind::expression;  // or cellValue
};

struct SheetDescription {
  std::string name;
  std::vector<CellDescription> cells;
  bool hidden = false;
  std::vector<ConditionDescription> conditions = {};  // the user's, by priority
  bool chart = false;                                 // in a file: a sheet that is a chart
};

struct NameDescription {
  std::string name;
  std::string refersTo;    // "=Data!$B$2:$B$3"
  std::string sheet = {};  // whose own name it is; empty: the workbook's
};

struct WorkbookDescription {
  std::string name;
  std::vector<SheetDescription> sheets;
  std::vector<NameDescription> names = {};
  bool savedByExcel = false;  // as its file says: text is read as references in Excel's way then
};

// The workbook that the contract suite of the spreadsheet port expects to find open.
WorkbookDescription knownWorkbook();

// The one with format conditions of the user's.
WorkbookDescription ruledWorkbook();

}  // namespace quorin::fakes
