// qx_probe, qx_readcell, qx_pollcell and qx_evaluate.
#include "host/model/Codes.h"
#include "tests/fakes/QuirkyAnswers.h"
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

using testing::StartsWith;

using CellHandlers = LibraryFixture;

TEST_F(CellHandlers, ProbeGivesTheWindow) {
  EXPECT_EQ(run("qx_probe"), R"j(["ok",0,25,1280,800])j");
}

TEST_F(CellHandlers, ProbeSeesThatNoWorkbookIsOpen) {
  memory_->close("Known.xlsx");
  EXPECT_EQ(run("qx_probe"), R"j(["noWorkbook",0,0,0,0])j");
}

TEST_F(CellHandlers, ProbeDoesWithoutAWindow) {
  memory_->program.windows.clear();
  memory_->program.windows.push_back(std::nullopt);
  EXPECT_EQ(run("qx_probe"), R"j(["ok",null,null,null,null])j");
}

TEST_F(CellHandlers, ReadCellDescribesAFormulaCell) {
  select("Data", "B4:C4");
  EXPECT_EQ(
      run("qx_readcell"),
      R"j(["Known.xlsx","Data","$B$4",4,2,"=SUM(B2:B3)","=SUM(B2:B3)",3.5,"$B$4:$C$4","$A$1:$C$4"])j");
}

TEST_F(CellHandlers, ReadCellDescribesConstantsBlanksBooleansAndErrors) {
  select("Data", "A7");
  EXPECT_EQ(run("qx_readcell"), R"j(["Known.xlsx","Data","$A$7",7,1,42,42,42,"$A$7","$A$7"])j");
  select("Data", "E6");
  EXPECT_THAT(run("qx_readcell"),
              StartsWith(R"j(["Known.xlsx","Data","$E$6",6,5,true,true,true,)j"));
  select("Data", "H20");
  EXPECT_EQ(run("qx_readcell"), R"j(["Known.xlsx","Data","$H$20",20,8,"","","","$H$20","$H$20"])j");
  select("Data", "C4");
  EXPECT_THAT(run("qx_readcell"),
              StartsWith(R"j(["Known.xlsx","Data","$C$4",4,3,"=1\/0","=1\/0",null,"$C$4")j"));
}

TEST_F(CellHandlers, ReadCellTakesTheWindowsRangeWhenTheSelectionIsNone) {
  select("Data", "B4:C4");
  // The fourth event is for the selection: a chart, say.
  excel_->failAt(static_cast<int>(excel_->events().size()) + 4, {-1728, "", std::nullopt});
  EXPECT_THAT(run("qx_readcell"), testing::EndsWith(R"j(3.5,"$B$4:$C$4","$A$1:$C$4"])j"));
}

// Whenever the user goes on while a cell is read, what is told is of one cell.
TEST_F(CellHandlers, ReadCellTellsOneCellWhileTheUserGoesOn) {
  const auto told = [this](const char* sheet, const char* address) {
    select(sheet, address);
    return run("qx_readcell");
  };
  const std::string constant = told("Data", "A7"), elsewhere = told("It's a test", "B2");
  const std::string formula = told("Data", "B4");
  excel_->forget();
  ASSERT_EQ(run("qx_readcell"), formula);
  const int events = static_cast<int>(excel_->events().size());
  for (int number = 1; number <= events; ++number) {
    select("Data", "B4");
    excel_->forget();
    excel_->meanwhile(number, [this] { select("Data", "A7"); });
    EXPECT_THAT(run("qx_readcell"), testing::AnyOf(formula, constant)) << number;
    select("Data", "B4");
    excel_->forget();
    excel_->meanwhile(number, [this] { select("It's a test", "B2"); });
    EXPECT_THAT(run("qx_readcell"), testing::AnyOf(formula, elsewhere)) << number;
  }
}

TEST_F(CellHandlers, ReadCellGivesUpWhileSheetsChangeAllTheTime) {
  select("Data", "B4");
  excel_->forget();
  bool onData = true;
  for (int number = 1; number <= 100; ++number) {
    excel_->meanwhile(number, [this, &onData] {
      if (fakes::propertyRead(excel_->events().back()) != host::codes::value2) return;
      onData = !onData;
      select(onData ? "Data" : "It's a test", "B4");
    });
  }
  EXPECT_THAT(run("qx_readcell"), StartsWith("error -1712 Another sheet"));
}

TEST_F(CellHandlers, ReadCellDoesWithoutARegion) {
  memory_->script.atEvery("currentRegion", fakes::Fault{.number = -50});
  select("Data", "A7");
  EXPECT_EQ(run("qx_readcell"), R"j(["Known.xlsx","Data","$A$7",7,1,42,42,42,"$A$7",""])j");
}

TEST_F(CellHandlers, PollCellNamesTheActiveCell) {
  select("It's a test", "B2");
  EXPECT_EQ(run("qx_pollcell"), R"j(["Known.xlsx","It's a test","$B$2"])j");
}

TEST_F(CellHandlers, PollCellAsksForThreeThings) {
  memory_->script.clear();
  run("qx_pollcell");
  EXPECT_THAT(memory_->script.calls(),
              testing::ElementsAre("activeWorkbook", "activeSheet", "activeCell"));
}

TEST_F(CellHandlers, EvaluateGivesScalarsAndArrays) {
  EXPECT_EQ(run("qx_evaluate", {"B2*2"}), "3");
  EXPECT_EQ(run("qx_evaluate", {"B2>1"}), "true");
  EXPECT_EQ(run("qx_evaluate", {"{1,2;3,4}"}), "[[1,2],[3,4]]");
}

TEST_F(CellHandlers, EvaluateRaisesAnErrorThatLeadsToItsName) {
  EXPECT_THAT(run("qx_evaluate", {"1/0"}), StartsWith("error -1708 "));
  EXPECT_EQ(run("qx_evaluate", {"IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))"}), "\"__ERR:2\"");
  excel_->quirks.hidesEvaluationErrors = true;
  EXPECT_EQ(run("qx_evaluate", {"1/0"}), "error -1708 Excel gave no value");
}

TEST_F(CellHandlers, EvaluateReadsTheValuesOfAReference) {
  EXPECT_EQ(run("qx_evaluate", {"B2"}), "1.5");
  EXPECT_EQ(run("qx_evaluate", {"B2:B3"}), "[[1.5],[2]]");
  EXPECT_EQ(run("qx_evaluate", {"A2:B3"}), R"j([["Bolt",1.5],["Nut",2]])j");
  EXPECT_EQ(run("qx_evaluate", {"C4"}), "error -1708 Excel gave no value");
}

TEST_F(CellHandlers, EvaluateReadsReferencesOfUpTo20000Cells) {
  EXPECT_THAT(run("qx_evaluate", {"A1:A20000"}), StartsWith(R"j([["Item"],["Bolt"],)j"));
  EXPECT_EQ(run("qx_evaluate", {"A1:A20001"}), R"j({"__unmarshalled":"obj "})j");
}

TEST_F(CellHandlers, EvaluateLeavesReferencesThatAreNotSafeToReadAlone) {
  excel_->quirks.diesOfFirstColumnErrors = true;
  excel_->quirks.dropsErrorRows = true;
  EXPECT_EQ(run("qx_evaluate", {"C3:D4"}), R"j({"__unmarshalled":"obj "})j");
  EXPECT_EQ(run("qx_evaluate", {"A1:B20000"}), R"j({"__unmarshalled":"obj "})j");
  EXPECT_EQ(run("qx_pollcell"), R"j(["Known.xlsx","Data","$A$1"])j") << "Excel lives";
}

}  // namespace
}  // namespace quorin
