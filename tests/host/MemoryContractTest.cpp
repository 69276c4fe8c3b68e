// The contract of the port, on the spreadsheet in memory.
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/host/ConditionsContract.h"
#include "tests/host/RowsContract.h"
#include "tests/host/ScratchContract.h"

namespace quorin::fakes {
namespace {

class InMemory : public OpenSpreadsheet {
 public:
  explicit InMemory(const WorkbookDescription& workbook) : book_(workbook.name) {
    spreadsheet_.open(workbook);
  }
  host::Spreadsheet& spreadsheet() override { return spreadsheet_; }
  std::string book() override { return book_; }

 private:
  const std::string book_;
  MemorySpreadsheet spreadsheet_;
};

std::unique_ptr<OpenSpreadsheet> openInMemory() {
  return std::make_unique<InMemory>(knownWorkbook());
}

std::unique_ptr<OpenSpreadsheet> openRulesInMemory() {
  return std::make_unique<InMemory>(ruledWorkbook());
}

INSTANTIATE_TEST_SUITE_P(Memory, SpreadsheetContract,
                         ::testing::Values(OpenSpreadsheetFactory{"memory", &openInMemory}));
INSTANTIATE_TEST_SUITE_P(Memory, RowsContract,
                         ::testing::Values(OpenSpreadsheetFactory{"memory", &openInMemory}));
INSTANTIATE_TEST_SUITE_P(Memory, ConditionsContract,
                         ::testing::Values(OpenSpreadsheetFactory{"memory", &openRulesInMemory}));
INSTANTIATE_TEST_SUITE_P(Memory, ScratchContract,
                         ::testing::Values(OpenSpreadsheetFactory{"memory", &openInMemory}));

}  // namespace
}  // namespace quorin::fakes
