#include "tests/calc/CalcFixture.h"

#include <gtest/gtest.h>
#include <memory>
#include <set>

#include "tests/calc/XlsxFile.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

struct Shared {
  TemporaryFolder folder;
  PrivateOffice* office = nullptr;
  std::unique_ptr<CalcSpreadsheet> spreadsheet;
  std::set<std::string> opened;

  Shared() {
    auto source = std::make_unique<PrivateOffice>();
    office = source.get();
    spreadsheet = std::make_unique<CalcSpreadsheet>(std::move(source));
  }
};

std::unique_ptr<Shared> shared;

class EndOfOffice : public testing::Environment {
  void TearDown() override { shared.reset(); }
};

const testing::Environment* const endOfOffice =
    testing::AddGlobalTestEnvironment(new EndOfOffice);  // owned by the test framework

Shared& theShared() {
  if (!shared) shared = std::make_unique<Shared>();
  return *shared;
}

}  // namespace

CalcSpreadsheet& SharedOffice::spreadsheet() {
  return *theShared().spreadsheet;
}

PrivateOffice& SharedOffice::office() {
  return *theShared().office;
}

std::string SharedOffice::open(const fakes::WorkbookDescription& workbook) {
  Shared& all = theShared();
  if (all.opened.insert(workbook.name).second) {
    const std::filesystem::path file = all.folder / workbook.name;
    fakes::writeXlsx(workbook, file);
    all.spreadsheet->openWorkbook(file.string());
  }
  return workbook.name;
}

}  // namespace quorin::host::calc
