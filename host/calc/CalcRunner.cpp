#include "host/calc/CalcRunner.h"

#include <utility>

#include "host/EngineRunner.h"
#include "host/model/ExcelObjectModel.h"

namespace quorin::host::calc {

CalcRunner makeCalcRunner(std::shared_ptr<OfficeSource> office, CalcOptions options) {
  auto calc = std::make_unique<CalcSpreadsheet>(std::move(office), std::move(options));
  CalcSpreadsheet* const spreadsheet = calc.get();
  auto excel = std::make_unique<ExcelObjectModel>(std::move(calc));
  return {std::make_unique<EngineRunner>(std::move(excel)), spreadsheet};
}

}  // namespace quorin::host::calc
