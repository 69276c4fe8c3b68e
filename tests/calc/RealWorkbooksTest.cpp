// Every real workbook at hand opens and answers. They lie beside the project, or where
// $QUORIN_WORKBOOKS says; without them the test is skipped and says so.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

#include "host/Address.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/office/PrivateOffice.h"

namespace quorin::host::calc {
namespace {

std::vector<std::filesystem::path> workbooks() {
  const char* told = std::getenv("QUORIN_WORKBOOKS");
  const std::filesystem::path folder = told != nullptr ? told : QUORIN_ROOT "/../shared/workbooks";
  std::vector<std::filesystem::path> found;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
    const std::string suffix = entry.path().extension();
    if (suffix == ".xlsx" || suffix == ".xlsm") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string contents(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::size_t entriesBeside(const std::filesystem::path& file) {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator(file.parent_path()),
                    std::filesystem::directory_iterator()));
}

TEST(RealWorkbooks, OpenAndAnswer) {
  const auto files = workbooks();
  if (files.empty()) GTEST_SKIP() << "no workbooks: set QUORIN_WORKBOOKS to a folder of them";
  CalcSpreadsheet calc(std::make_shared<PrivateOffice>());
  for (const auto& file : files) {
    SCOPED_TRACE(file.filename().string());
    const std::string before = contents(file);
    const std::size_t beside = entriesBeside(file);
    calc.openWorkbook(file.string());
    const std::string book = file.filename().string();
    ASSERT_EQ(calc.activeWorkbook(), book);
    const auto cell = calc.activeCell();
    ASSERT_TRUE(cell);
    const auto sheets = calc.worksheets(book);
    EXPECT_NE(std::find(sheets.begin(), sheets.end(), cell->sheet.sheet), sheets.end());
    EXPECT_EQ(calc.formulas(*cell, ReferenceStyle::a1).cells.size(), 1U);
    std::size_t formulas = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(sheets.size(), 5); ++i) {
      const auto used = calc.usedRange({book, sheets[i]});
      ASSERT_TRUE(used);
      RangeRef block = *used;
      Area& area = block.areas.front();
      area.lastRow = std::min(area.lastRow, area.firstRow + 99);
      area.lastColumn = std::min(area.lastColumn, area.firstColumn + 49);
      const auto values = calc.values(block);
      const auto texts = calc.displayedTexts(block);
      const auto grid = calc.formulas(block, ReferenceStyle::a1);
      ASSERT_EQ(values.cells.size(), grid.cells.size());
      ASSERT_EQ(values.cells.size(), texts.cells.size());
      for (const CellValue& value : grid.cells) {
        const auto* text = std::get_if<std::string>(&value);
        formulas += text != nullptr && text->starts_with("=") ? 1 : 0;
      }
    }
    RecordProperty(file.stem().string(), static_cast<int>(formulas));
    EXPECT_EQ(calc.evaluate("1/0", cell->sheet), Evaluation(CellValue(CellError{"#DIV/0!"})));
    EXPECT_EQ(entriesBeside(file), beside);  // no lock file
    EXPECT_EQ(contents(file), before);
  }
  EXPECT_EQ(calc.workbooks().size(), files.size());
}

}  // namespace
}  // namespace quorin::host::calc
