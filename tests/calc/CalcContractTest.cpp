// The contract of the port, on a real office.
#include "tests/calc/CalcFixture.h"
#include "tests/host/ConditionsContract.h"
#include "tests/host/RowsContract.h"
#include "tests/host/ScratchContract.h"

namespace quorin::fakes {
namespace {

class InCalc : public OpenSpreadsheet {
 public:
  explicit InCalc(const WorkbookDescription& workbook)
      : book_(host::calc::SharedOffice::open(workbook)) {}
  host::Spreadsheet& spreadsheet() override { return host::calc::SharedOffice::spreadsheet(); }
  std::string book() override { return book_; }

 private:
  const std::string book_;
};

std::unique_ptr<OpenSpreadsheet> openInCalc() {
  return std::make_unique<InCalc>(knownWorkbook());
}

std::unique_ptr<OpenSpreadsheet> openRulesInCalc() {
  return std::make_unique<InCalc>(ruledWorkbook());
}

INSTANTIATE_TEST_SUITE_P(Calc, SpreadsheetContract,
                         ::testing::Values(OpenSpreadsheetFactory{"Calc", &openInCalc}));
INSTANTIATE_TEST_SUITE_P(Calc, RowsContract,
                         ::testing::Values(OpenSpreadsheetFactory{"Calc", &openInCalc}));
INSTANTIATE_TEST_SUITE_P(Calc, ConditionsContract,
                         ::testing::Values(OpenSpreadsheetFactory{"Calc", &openRulesInCalc}));
INSTANTIATE_TEST_SUITE_P(Calc, ScratchContract,
                         ::testing::Values(OpenSpreadsheetFactory{"Calc", &openInCalc}));

}  // namespace
}  // namespace quorin::fakes
