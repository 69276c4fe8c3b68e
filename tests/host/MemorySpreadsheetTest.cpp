#include <functional>
#include <gtest/gtest.h>
#include <thread>

#include "host/Address.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin::fakes {
namespace {

class MemorySpreadsheetTest : public ::testing::Test {
 protected:
  MemorySpreadsheetTest() { spreadsheet.open(knownWorkbook()); }
  host::RangeRef cell(const char* address) const {
    return {{book, "Data"}, host::parseA1(address).value()};
  }
  int numberOf(const std::function<void()>& call) {
    try {
      call();
    } catch (const host::SpreadsheetError& error) {
      return error.number();
    }
    return 0;
  }
  MemorySpreadsheet spreadsheet;
  std::string book = "Known.xlsx";
};

TEST_F(MemorySpreadsheetTest, KeepsEachSheetsSelection) {
  spreadsheet.goTo(cell("B2:B3"));
  spreadsheet.activateSheet({"Known.xlsx", "Blank"});
  spreadsheet.activateSheet({"Known.xlsx", "Data"});
  EXPECT_EQ(spreadsheet.selection(), cell("B2:B3"));
}

TEST_F(MemorySpreadsheetTest, RecordsItsCalls) {
  spreadsheet.values(cell("A1:B2"));
  spreadsheet.activeCell();
  EXPECT_EQ(spreadsheet.script.calls(),
            (std::vector<std::string>{"values [Known.xlsx]Data!$A$1:$B$2", "activeCell"}));
}

TEST_F(MemorySpreadsheetTest, FailsAtTheCallThatTheScriptNames) {
  spreadsheet.script.atCall(2, {.number = -609, .message = "Connection is invalid."});
  EXPECT_EQ(numberOf([&] { spreadsheet.activeCell(); }), 0);
  EXPECT_EQ(numberOf([&] { spreadsheet.activeCell(); }), -609);
  EXPECT_EQ(numberOf([&] { spreadsheet.activeCell(); }), 0);
  spreadsheet.script.atEvery("selection", {.number = -50});
  EXPECT_EQ(numberOf([&] { spreadsheet.selection(); }), -50);
  EXPECT_EQ(numberOf([&] { spreadsheet.selection(); }), -50);
  EXPECT_EQ(numberOf([&] { spreadsheet.activeCell(); }), 0);
}

TEST_F(MemorySpreadsheetTest, HangsUntilItIsReleased) {
  spreadsheet.script.atEvery("version", {.hangs = true});
  std::thread caller([this] { spreadsheet.version(); });
  spreadsheet.script.waitUntilHung();
  EXPECT_EQ(spreadsheet.script.calls(), std::vector<std::string>{"version"});
  spreadsheet.script.release();
  caller.join();
}

TEST_F(MemorySpreadsheetTest, TakesItsTimeByTheTestsClock) {
  ManualClock clock;
  spreadsheet.script.useClock(&clock);
  spreadsheet.script.atEvery("values", {.takes = std::chrono::seconds(3)});
  spreadsheet.values(cell("A1"));
  EXPECT_EQ(clock.now().time_since_epoch(), std::chrono::seconds(3));
}

TEST_F(MemorySpreadsheetTest, RefusesMovesWhileACellIsEdited) {
  spreadsheet.program.editing = true;
  EXPECT_EQ(numberOf([&] { spreadsheet.goTo(cell("B2")); }), -10000);
  EXPECT_EQ(numberOf([&] { spreadsheet.select(cell("B2")); }), -10000);
  EXPECT_EQ(numberOf([&] { spreadsheet.activateCell(cell("B2")); }), -10000);
  EXPECT_EQ(spreadsheet.activeCell(), cell("A1"));
}

TEST_F(MemorySpreadsheetTest, AnswersMinus600WhenItDoesNotRun) {
  spreadsheet.program.running = false;
  EXPECT_FALSE(spreadsheet.isRunning());
  EXPECT_EQ(numberOf([&] { spreadsheet.workbooks(); }), -600);
}

TEST_F(MemorySpreadsheetTest, HasNothingActiveWithoutWorkbooks) {
  spreadsheet.close("Known.xlsx");
  EXPECT_EQ(spreadsheet.activeWorkbook(), std::nullopt);
  EXPECT_EQ(spreadsheet.activeSheet(), std::nullopt);
  EXPECT_EQ(spreadsheet.activeCell(), std::nullopt);
  EXPECT_EQ(spreadsheet.selection(), std::nullopt);
  EXPECT_EQ(spreadsheet.windowBounds(1), std::nullopt);
}

TEST_F(MemorySpreadsheetTest, EvaluatesFromTheTestsTableFirst) {
  spreadsheet.answer("1+2", host::CellValue("twelve"));
  EXPECT_EQ(spreadsheet.evaluate("1+2", cell("A1").sheet),
            host::Evaluation(host::CellValue("twelve")));
}

TEST_F(MemorySpreadsheetTest, GivesTheDependentsItIsToldToGive) {
  spreadsheet.setDependents(cell("B2"), cell("Z9"));
  spreadsheet.setDependents(cell("B3"), std::nullopt);
  EXPECT_EQ(spreadsheet.dependents(cell("B2"), host::DependentLevels::direct), cell("Z9"));
  EXPECT_EQ(spreadsheet.dependents(cell("B3"), host::DependentLevels::all), std::nullopt);
}

TEST_F(MemorySpreadsheetTest, SpillsOnlyWhereNothingIsInTheWay) {
  const host::SheetRef scratch{spreadsheet.makeWorkbook(), "Sheet1"};
  const host::RangeRef first{scratch, {{1, 1, 1, 1}}}, second{scratch, {{2, 1, 2, 1}}};
  spreadsheet.setFormula(second, "=5");
  spreadsheet.setFormula(first, "={1;2}");
  EXPECT_EQ(spreadsheet.values(first).cells.front(), host::CellValue(host::CellError{"#SPILL!"}));
  EXPECT_EQ(spreadsheet.values(second).cells.front(), host::CellValue(5.0));
}

TEST_F(MemorySpreadsheetTest, StopsSpillingWhenItIsWrittenOver) {
  const host::SheetRef scratch{spreadsheet.makeWorkbook(), "Sheet1"};
  const host::RangeRef first{scratch, {{1, 1, 1, 1}}}, second{scratch, {{2, 1, 2, 1}}};
  spreadsheet.setFormula(first, "={1,2;3,4}");
  spreadsheet.setFormula(second, "=5");
  EXPECT_EQ(spreadsheet.values(first).cells.front(), host::CellValue(host::CellError{"#SPILL!"}));
  EXPECT_EQ(spreadsheet.usedRange(scratch).value().areas.front(), (host::Area{1, 1, 2, 1}));
  spreadsheet.setFormula(first, "={1,2}");
  EXPECT_EQ(spreadsheet.usedRange(scratch).value().areas.front(), (host::Area{1, 1, 2, 2}));
  spreadsheet.setFormula(first, "=7");
  EXPECT_EQ(spreadsheet.usedRange(scratch).value().areas.front(), (host::Area{1, 1, 2, 1}));
}

struct Formula {
  const char* text;
  host::CellValue result;
};

void PrintTo(const Formula& formula, std::ostream* out) {
  *out << formula.text;
}

class MemoryEvaluation : public ::testing::TestWithParam<Formula> {};

TEST_P(MemoryEvaluation, ComputesAsExcelDoes) {
  MemorySpreadsheet spreadsheet;
  spreadsheet.open(knownWorkbook());
  EXPECT_EQ(spreadsheet.evaluate(GetParam().text, {"Known.xlsx", "Data"}),
            host::Evaluation(GetParam().result));
}

INSTANTIATE_TEST_SUITE_P(
    Table, MemoryEvaluation,
    ::testing::Values(
        Formula{"-2^2", 4.0}, Formula{"2+3*4", 14.0}, Formula{"(2+3)*4", 20.0}, Formula{"50%", 0.5},
        Formula{"\"1\"+1", 2.0}, Formula{"\"x\"+1", host::CellError{"#VALUE!"}},
        Formula{"1=1", true}, Formula{"\"a\"=\"A\"", true}, Formula{"1<\"a\"", true},
        Formula{"1<>2", true}, Formula{"2>=3", false}, Formula{"NOT(TRUE)", false},
        Formula{"1.5E+2", 150.0}, Formula{"1&TRUE", "1TRUE"},
        Formula{"\"say \"\"hi\"\"\"", "say \"hi\""}, Formula{"A4+1", 1.0}, Formula{"A4=\"\"", true},
        Formula{"A4=0", true}, Formula{"A4&\"x\"", "x"}, Formula{"IF(A7>1;1;2)", 1.0},
        Formula{"#REF!", host::CellError{"#REF!"}},
        Formula{"Nowhere!A1+1", host::CellError{"#REF!"}}, Formula{"[Known.xlsx]Data!B3+1", 3.0},
        Formula{"foo(1)", host::CellError{"#NAME?"}}, Formula{"1 2", host::CellError{"#NAME?"}},
        Formula{"(1", host::CellError{"#NAME?"}}, Formula{"\"open", host::CellError{"#NAME?"}},
        Formula{"10^400", host::CellError{"#NUM!"}}, Formula{"ERROR.TYPE(NA())", 7.0},
        Formula{"ISERROR(C4)", true}));

class UserEdits : public MemorySpreadsheetTest {
 protected:
  UserEdits() {
    spreadsheet.addFormatCondition(cell("A2,B5:B8"), "=1=1");
    spreadsheet.setHidden(cell("6:7"), host::Axis::rows, true);
  }
  std::string colouredOn(const std::string& sheet) {
    std::string text;
    for (const auto& each : spreadsheet.formatConditions({{book, sheet}, {{1, 1, 99, 9}}}))
      text += host::addressText(each.areas);
    return text;
  }
  std::string hiddenRows() {
    std::string text;
    for (int row = 1; row <= 20; ++row)
      if (spreadsheet.hidden({{book, "Data"}, {{row, 1, row, 1}}}, host::Axis::rows) == true)
        text += std::to_string(row) + " ";
    return text;
  }
  host::SheetRef data() const { return {book, "Data"}; }
};

TEST_F(UserEdits, CarryEverythingAlongWithTheRows) {
  spreadsheet.userInsertsRows(data(), 3, 2);
  EXPECT_EQ(colouredOn("Data"), "$A$2,$B$7:$B$10");
  EXPECT_EQ(hiddenRows(), "8 9 ");
  EXPECT_EQ(spreadsheet.values(cell("A5")).cells.at(0), host::CellValue("Nut"));
  spreadsheet.userInsertsRows(data(), 8, 1);
  EXPECT_EQ(colouredOn("Data"), "$A$2,$B$7:$B$11") << "grown";
  EXPECT_TRUE(spreadsheet.isModified(book));
}

TEST_F(UserEdits, TakeAwayWhatIsOnDeletedRows) {
  spreadsheet.userDeletesRows(data(), 6, 1);
  EXPECT_EQ(colouredOn("Data"), "$A$2,$B$5,$B$6:$B$7");
  EXPECT_EQ(hiddenRows(), "6 ");
  spreadsheet.userDeletesRows(data(), 2, 1);
  EXPECT_EQ(colouredOn("Data"), "$B$4,$B$5:$B$6");
  EXPECT_EQ(spreadsheet.values(cell("A2")).cells.at(0), host::CellValue("Nut"));
  spreadsheet.userDeletesRows(data(), 1, 9);
  EXPECT_TRUE(spreadsheet.formatConditions(cell("A1:Z99")).empty());
}

TEST_F(UserEdits, RenameAndCopySheets) {
  spreadsheet.userRenamesSheet(data(), "Renamed");
  spreadsheet.userCopiesSheet({book, "Renamed"}, "Copy");
  EXPECT_EQ(colouredOn("Renamed"), "$A$2,$B$5:$B$8");
  EXPECT_EQ(colouredOn("Copy"), "$A$2,$B$5:$B$8");
  EXPECT_EQ(numberOf([&] { colouredOn("Data"); }), -1728);
}

TEST_F(UserEdits, OpenAWorkbookAsItWasSaved) {
  spreadsheet.userSaves(book);
  spreadsheet.userEnters(data(), {"A1", "saved"});
  spreadsheet.userSaves(book);
  EXPECT_FALSE(spreadsheet.isModified(book));
  spreadsheet.userDeletesRows(data(), 1, 9);
  spreadsheet.userReopens(book);
  EXPECT_EQ(colouredOn("Data"), "$A$2,$B$5:$B$8");
  EXPECT_EQ(spreadsheet.values(cell("A1")).cells.at(0), host::CellValue("saved"));
  EXPECT_FALSE(spreadsheet.isModified(book));
  EXPECT_FALSE(spreadsheet.userUndoes(book));
}

TEST_F(UserEdits, SaveUnderAnotherName) {
  spreadsheet.userEnters(data(), {"A1", "saved"});
  spreadsheet.userSavesAs(book, "Other.xlsx");
  EXPECT_EQ(spreadsheet.workbooks(), std::vector<std::string>{"Other.xlsx"});
  book = "Other.xlsx";
  EXPECT_EQ(colouredOn("Data"), "$A$2,$B$5:$B$8");
  EXPECT_FALSE(spreadsheet.isModified(book));
  spreadsheet.userReopens(book);
  EXPECT_EQ(spreadsheet.values(cell("A1")).cells.at(0), host::CellValue("saved"));
}

TEST_F(MemorySpreadsheetTest, DoesNotGoToAHiddenSheet) {
  spreadsheet.open({"Two.xlsx", {{"Shown", {}}, {"Away", {{"A1", 5.0}}, true}}});
  const host::RangeRef hidden{{"Two.xlsx", "Away"}, host::parseA1("A1").value()};
  try {
    spreadsheet.goTo(hidden);
    ADD_FAILURE() << "went to a hidden sheet";
  } catch (const host::SpreadsheetError& error) {
    EXPECT_EQ(error.number(), -50);
  }
  EXPECT_EQ(spreadsheet.activeSheet()->sheet, "Shown");
}

}  // namespace
}  // namespace quorin::fakes
