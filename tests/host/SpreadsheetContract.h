// The contract of the port Spreadsheet, run against every implementation of it. A test program
// includes this header once and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Memory, SpreadsheetContract,
//                            ::testing::Values(OpenSpreadsheetFactory{"memory", &openInMemory}));
//
// The factory opens exactly knownWorkbook() and may hand out the same open workbook again: the
// tests change nothing but the selection, and set it before they rely on it.
#pragma once

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/Address.h"
#include "host/Spreadsheet.h"
#include "tests/fakes/Named.h"
#include "tests/fakes/WorkbookDescription.h"

namespace quorin::fakes {

class OpenSpreadsheet {
 public:
  virtual ~OpenSpreadsheet() = default;
  virtual host::Spreadsheet& spreadsheet() = 0;
  virtual std::string book() = 0;  // the name that the known workbook goes by there
};

using OpenSpreadsheetFactory = Named<std::unique_ptr<OpenSpreadsheet> (*)()>;

class SpreadsheetContract : public ::testing::TestWithParam<OpenSpreadsheetFactory> {
 protected:
  void SetUp() override {
    open_ = GetParam().value();
    ASSERT_NE(open_, nullptr);
    book_ = open_->book();
  }

  host::Spreadsheet& sheets() { return open_->spreadsheet(); }
  host::SheetRef data() const { return {book_, "Data"}; }
  host::SheetRef odd() const { return {book_, "It's a test"}; }
  host::SheetRef blank() const { return {book_, "Blank"}; }
  host::RangeRef on(const host::SheetRef& sheet, const char* address) const {
    return {sheet, host::parseA1(address).value()};
  }

  // The error number of what fails, 0 of what does not.
  template <typename F>
  static int errorOf(F call) {
    try {
      call();
    } catch (const host::SpreadsheetError& error) {
      return error.number();
    }
    return 0;
  }

  static std::set<std::string> cellsOf(const std::optional<host::RangeRef>& range) {
    std::set<std::string> cells;
    if (!range) return cells;
    for (const host::Area& area : range->areas)
      for (int row = area.firstRow; row <= area.lastRow; ++row)
        for (int column = area.firstColumn; column <= area.lastColumn; ++column)
          cells.insert(host::columnLetters(column) + std::to_string(row));
    return cells;
  }

  host::CellValue evaluated(const char* expression) {
    const host::Evaluation result = sheets().evaluate(expression, data());
    const auto* const value = std::get_if<host::CellValue>(&result);
    if (value == nullptr) ADD_FAILURE() << expression << " gave no single value";
    return value == nullptr ? host::CellValue() : *value;
  }

  std::unique_ptr<OpenSpreadsheet> open_;
  std::string book_;
};

using CellValues = std::vector<host::CellValue>;

TEST_P(SpreadsheetContract, RunsAndListsItsWorkbookAndSheets) {
  EXPECT_TRUE(sheets().isRunning());
  EXPECT_FALSE(sheets().version().empty());
  EXPECT_THAT(sheets().workbooks(), ::testing::Contains(book_));
  EXPECT_EQ(sheets().worksheets(book_), (std::vector<std::string>{"Data", "It's a test", "Blank"}));
}

TEST_P(SpreadsheetContract, RefusesWhatIsNotThere) {
  const host::SheetRef noBook{"No such book.xlsx", "Data"}, noSheet{book_, "Nowhere"};
  EXPECT_EQ(errorOf([&] { sheets().worksheets(noBook.book); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().activeSheetOf(noBook.book); }), -1728);
  EXPECT_EQ(errorOf([&] { sheets().activateWorkbook(noBook.book); }), -1728);
  for (const host::SheetRef& sheet : {noBook, noSheet}) {
    EXPECT_EQ(errorOf([&] { sheets().values(on(sheet, "A1")); }), -1728) << sheet.sheet;
    EXPECT_EQ(errorOf([&] { sheets().formulas(on(sheet, "A1"), {}); }), -1728) << sheet.sheet;
    EXPECT_EQ(errorOf([&] { sheets().goTo(on(sheet, "A1")); }), -1728) << sheet.sheet;
    EXPECT_EQ(errorOf([&] { sheets().select(on(sheet, "A1")); }), -1728) << sheet.sheet;
    EXPECT_EQ(errorOf([&] { sheets().activateSheet(sheet); }), -1728) << sheet.sheet;
    EXPECT_EQ(errorOf([&] { sheets().usedRange(sheet); }), -1728) << sheet.sheet;
    EXPECT_EQ(errorOf([&] { sheets().evaluate("1+1", sheet); }), -1728) << sheet.sheet;
  }
}

TEST_P(SpreadsheetContract, GoesToACellOnAnotherSheet) {
  sheets().goTo(on(data(), "B2"));
  EXPECT_EQ(sheets().activeWorkbook(), book_);
  EXPECT_EQ(sheets().activeSheet(), data());
  EXPECT_EQ(sheets().activeCell(), on(data(), "B2"));
  sheets().goTo(on(odd(), "C3:D4"));
  EXPECT_EQ(sheets().activeSheet(), odd());
  EXPECT_EQ(sheets().activeSheetOf(book_), odd());
  EXPECT_EQ(sheets().activeCell(), on(odd(), "C3"));
  EXPECT_EQ(sheets().selection(), on(odd(), "C3:D4"));
}

TEST_P(SpreadsheetContract, SelectsSeveralAreas) {
  sheets().goTo(on(data(), "A1"));
  sheets().select(on(data(), "A1:B2,D4"));
  EXPECT_EQ(sheets().selection(), on(data(), "A1:B2,D4"));
  sheets().select(on(data(), "5:5"));
  EXPECT_EQ(sheets().selection(), on(data(), "5:5"));
}

TEST_P(SpreadsheetContract, ActivatesACellInsideAndOutsideTheSelection) {
  sheets().goTo(on(data(), "A1:C4"));
  sheets().activateCell(on(data(), "B3"));
  EXPECT_EQ(sheets().activeCell(), on(data(), "B3"));
  sheets().activateCell(on(data(), "F9"));
  EXPECT_EQ(sheets().activeCell(), on(data(), "F9"));
  EXPECT_EQ(sheets().selection(), on(data(), "F9"));
}

TEST_P(SpreadsheetContract, ActivatesSheetsAndWorkbooks) {
  sheets().activateSheet(odd());
  EXPECT_EQ(sheets().activeSheet(), odd());
  sheets().activateSheet(data());
  sheets().activateWorkbook(book_);
  EXPECT_EQ(sheets().activeSheet(), data());
}

// Calc keeps no more than the active cell.
TEST_P(SpreadsheetContract, KeepsEachSheetsActiveCell) {
  sheets().goTo(on(data(), "B2:B3"));
  sheets().goTo(on(odd(), "A1"));
  sheets().activateSheet(data());
  EXPECT_EQ(sheets().activeCell(), on(data(), "B2"));
}

TEST_P(SpreadsheetContract, FindsNamesAsSeenFromASheet) {
  EXPECT_EQ(sheets().named(data(), "Prices"), on(data(), "B2:B3"));
  EXPECT_EQ(sheets().named(odd(), "PRICES"), on(data(), "B2:B3"));
  EXPECT_EQ(sheets().named(data(), "Spot"), on(data(), "A1"));
  EXPECT_EQ(sheets().named(odd(), "Spot"), on(odd(), "B2"));
  EXPECT_EQ(sheets().named(data(), "Factor"), std::nullopt);
  EXPECT_EQ(sheets().named(data(), "NoSuchName"), std::nullopt);
}

TEST_P(SpreadsheetContract, FindsRegionsAndUsedRanges) {
  EXPECT_EQ(sheets().currentRegion(on(data(), "B2")), on(data(), "A1:C4"));
  EXPECT_EQ(sheets().currentRegion(on(data(), "A7")), on(data(), "A7"));
  EXPECT_EQ(sheets().currentRegion(on(data(), "H20")), on(data(), "H20"));
  EXPECT_EQ(sheets().usedRange(data()), on(data(), "A1:E10"));
  EXPECT_EQ(sheets().usedRange(blank()), on(blank(), "A1"));
}

TEST_P(SpreadsheetContract, FindsDependentsOnTheSameSheet) {
  using host::DependentLevels;
  EXPECT_EQ(cellsOf(sheets().dependents(on(data(), "B2"), DependentLevels::direct)),
            (std::set<std::string>{"B4", "C2", "E8"}));
  EXPECT_EQ(cellsOf(sheets().dependents(on(data(), "B2"), DependentLevels::all)),
            (std::set<std::string>{"B4", "C2", "E10", "E8"}));
  EXPECT_EQ(cellsOf(sheets().dependents(on(data(), "B2:B3"), DependentLevels::direct)),
            (std::set<std::string>{"B4", "C2", "C3", "E8"}));
  EXPECT_EQ(cellsOf(sheets().dependents(on(data(), "B2:C3"), DependentLevels::direct)),
            (std::set<std::string>{"B4", "C2", "C3", "E8"}));
  EXPECT_EQ(sheets().dependents(on(data(), "A2"), DependentLevels::direct), std::nullopt);
  EXPECT_EQ(sheets().dependents(on(data(), "H20"), DependentLevels::all), std::nullopt);
}

TEST_P(SpreadsheetContract, ReadsValuesOfEveryKind) {
  const auto grid = sheets().values(on(data(), "A2:C4"));
  EXPECT_EQ(grid.rows, 3);
  EXPECT_EQ(grid.columns, 3);
  EXPECT_EQ(grid.cells, (CellValues{"Bolt", 1.5, 3.0, "Nut", 2.0, 4.0, host::Blank(), 3.5,
                                    host::CellError{"#DIV/0!"}}));
  EXPECT_EQ(sheets().values(on(data(), "E6")).cells, (CellValues{true}));
  EXPECT_EQ(sheets().values(on(data(), "E8")).cells, (CellValues{"yes"}));
}

TEST_P(SpreadsheetContract, ReadsTheFirstAreaOfSeveral) {
  EXPECT_EQ(sheets().values(on(data(), "B2:B3,A7")).cells, (CellValues{1.5, 2.0}));
  EXPECT_EQ(sheets().displayedTexts(on(data(), "B2,A7")).cells, (std::vector<std::string>{"1.5"}));
}

TEST_P(SpreadsheetContract, ReadsFormulasInExcelsGrammar) {
  EXPECT_EQ(sheets().formulas(on(data(), "A2:C4"), host::ReferenceStyle::a1).cells,
            (CellValues{"Bolt", 1.5, "=B2*2", "Nut", 2.0, "=B3*2", host::Blank(), "=SUM(B2:B3)",
                        "=1/0"}));
  EXPECT_EQ(sheets().formulas(on(data(), "E8"), host::ReferenceStyle::a1).cells,
            (CellValues{"=IF($B$2>1,\"yes\",\"no\")"}));
  EXPECT_EQ(sheets().formulas(on(odd(), "A1"), host::ReferenceStyle::a1).cells,
            (CellValues{"=Data!B2+1"}));
  EXPECT_EQ(sheets().formulas(on(data(), "E6"), host::ReferenceStyle::a1).cells,
            (CellValues{true}));
}

TEST_P(SpreadsheetContract, ReadsFormulasInR1C1) {
  const auto r1c1 = [this](const char* address) {
    return sheets().formulas(on(data(), address), host::ReferenceStyle::r1c1).cells;
  };
  EXPECT_EQ(r1c1("B2:C2"), (CellValues{1.5, "=RC[-1]*2"}));
  EXPECT_EQ(r1c1("B4"), (CellValues{"=SUM(R[-2]C:R[-1]C)"}));
  EXPECT_EQ(r1c1("E8"), (CellValues{"=IF(R2C2>1,\"yes\",\"no\")"}));
}

TEST_P(SpreadsheetContract, ReadsFormulasInTheUsersGrammar) {
  const auto grid = sheets().localFormulas(on(data(), "A2:C2"));
  ASSERT_EQ(grid.cells.size(), 3U);
  EXPECT_EQ(grid.at(0, 0), host::CellValue("Bolt"));
  EXPECT_EQ(grid.at(0, 1), host::CellValue(1.5));
  EXPECT_EQ(grid.at(0, 2), host::CellValue("=B2*2"));
}

TEST_P(SpreadsheetContract, ReadsDisplayedTexts) {
  EXPECT_EQ(sheets().displayedTexts(on(data(), "A2:C2")).cells,
            (std::vector<std::string>{"Bolt", "1.5", "3"}));
  EXPECT_EQ(sheets().displayedTexts(on(data(), "A4:C4")).cells,
            (std::vector<std::string>{"", "3.5", "#DIV/0!"}));
}

TEST_P(SpreadsheetContract, EvaluatesValues) {
  EXPECT_EQ(evaluated("1+2"), host::CellValue(3.0));
  EXPECT_EQ(evaluated("=1+2"), host::CellValue(3.0));
  EXPECT_EQ(evaluated("B2*2+A7"), host::CellValue(45.0));
  EXPECT_EQ(evaluated("SUM(Prices)"), host::CellValue(3.5));
  EXPECT_EQ(evaluated("'It''s a test'!A1*2"), host::CellValue(5.0));
  EXPECT_EQ(evaluated("\"a\"&\"b\""), host::CellValue("ab"));
  EXPECT_EQ(evaluated("B2>1"), host::CellValue(true));
}

TEST_P(SpreadsheetContract, EvaluatesToErrorValues) {
  EXPECT_EQ(evaluated("1/0"), host::CellValue(host::CellError{"#DIV/0!"}));
  EXPECT_EQ(evaluated("C4+1"), host::CellValue(host::CellError{"#DIV/0!"}));
  EXPECT_EQ(evaluated("NoSuchName"), host::CellValue(host::CellError{"#NAME?"}));
  EXPECT_EQ(evaluated("NA()"), host::CellValue(host::CellError{"#N/A"}));
  EXPECT_TRUE(std::holds_alternative<host::CellError>(evaluated("1+")));
  EXPECT_EQ(evaluated("IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))"), host::CellValue("__ERR:2"));
}

TEST_P(SpreadsheetContract, EvaluatesArraysAndReferences) {
  const auto array = sheets().evaluate("{1,2;3,4}", data());
  const auto* const grid = std::get_if<host::Grid<host::CellValue>>(&array);
  ASSERT_NE(grid, nullptr);
  EXPECT_EQ(grid->rows, 2);
  EXPECT_EQ(grid->columns, 2);
  EXPECT_EQ(grid->cells, (CellValues{1.0, 2.0, 3.0, 4.0}));
  EXPECT_EQ(sheets().evaluate("B2:B3", data()), host::Evaluation(on(data(), "B2:B3")));
  EXPECT_EQ(sheets().evaluate("Data!$A$1", odd()), host::Evaluation(on(data(), "A1")));
}

TEST_P(SpreadsheetContract, EvaluatesAsSeenFromTheSheet) {
  EXPECT_EQ(sheets().evaluate("A1+0", odd()), host::Evaluation(host::CellValue(2.5)));
  EXPECT_EQ(sheets().evaluate("Spot&\"\"", odd()), host::Evaluation(host::CellValue("x")));
}

TEST_P(SpreadsheetContract, LeavesTheSelectionWhereItWasWhileEvaluating) {
  sheets().goTo(on(data(), "B2:C3"));
  sheets().evaluate("SUM(B2:B3)+1/3", odd());
  EXPECT_EQ(sheets().activeSheet(), data());
  EXPECT_EQ(sheets().selection(), on(data(), "B2:C3"));
}

}  // namespace quorin::fakes
