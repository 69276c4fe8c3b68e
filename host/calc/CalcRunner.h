// makeCalcRunner: the whole way from a handler call to LibreOffice Calc, put together in one place:
// the script engine, Excel's object model and Calc's spreadsheet. Call thread.
#pragma once

#include <memory>

#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/OfficeSource.h"
#include "kit/excel/ScriptRunner.h"

namespace quorin::host::calc {

struct CalcRunner {
  std::unique_ptr<ScriptRunner> runner;
  CalcSpreadsheet* spreadsheet;  // the runner's, as long as that lives; on the call thread
};

CalcRunner makeCalcRunner(std::shared_ptr<OfficeSource> office, CalcOptions options);

}  // namespace quorin::host::calc
