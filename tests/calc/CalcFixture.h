// One private office for a whole test program, and workbooks made for it.
#pragma once

#include <filesystem>
#include <string>

#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/PrivateOffice.h"
#include "tests/fakes/WorkbookDescription.h"

namespace quorin::host::calc {

// Starts at first use and ends with the test program.
class SharedOffice {
 public:
  static CalcSpreadsheet& spreadsheet();
  static PrivateOffice& office();

  // Opens the workbook in it, once for each name, and gives the name it goes by.
  static std::string open(const fakes::WorkbookDescription& workbook);
};

}  // namespace quorin::host::calc
