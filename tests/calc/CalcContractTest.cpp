// The contract of the port, on a real office.
#include "tests/calc/CalcFixture.h"
#include "tests/host/LinesContract.h"
#include "tests/host/ScratchContract.h"

namespace quorin::fakes {
namespace {

class InCalc : public OpenSpreadsheet {
 public:
  InCalc() : book_(host::calc::SharedOffice::open(knownWorkbook())) {}
  host::Spreadsheet& spreadsheet() override { return host::calc::SharedOffice::spreadsheet(); }
  std::string book() override { return book_; }

 private:
  const std::string book_;
};

std::unique_ptr<OpenSpreadsheet> openInCalc() {
  return std::make_unique<InCalc>();
}

INSTANTIATE_TEST_SUITE_P(Calc, SpreadsheetContract, ::testing::Values(&openInCalc));
INSTANTIATE_TEST_SUITE_P(Calc, LinesContract, ::testing::Values(&openInCalc));
INSTANTIATE_TEST_SUITE_P(Calc, ScratchContract, ::testing::Values(&openInCalc));

}  // namespace
}  // namespace quorin::fakes
