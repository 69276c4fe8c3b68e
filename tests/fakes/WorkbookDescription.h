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

struct SheetDescription {
  std::string name;
  std::vector<CellDescription> cells;
  bool hidden = false;
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
};

// The workbook that the contract suite of the spreadsheet port expects to find open.
WorkbookDescription knownWorkbook();

}  // namespace quorin::fakes
