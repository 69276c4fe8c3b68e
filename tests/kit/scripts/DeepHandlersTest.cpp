// qx_deepeval and qx_workbookmap where Excel or the user make it hard for them.
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

class DeepHandlers : public LibraryFixture {
 protected:
  std::string deepEval(Array plan) { return run("qx_deepeval", {std::move(plan)}); }
  void expectNothingLeft() {
    memory_->script.clear();
    EXPECT_EQ(run("qx_workbookcount"), "1");
    EXPECT_EQ(memory_->activeWorkbook(), "Known.xlsx");
  }
};

TEST_F(DeepHandlers, DeepEvalRefusesBadPlansWithoutAnEvent) {
  EXPECT_EQ(deepEval({}), "error -9001 deep-eval plan empty");
  EXPECT_EQ(deepEval(Array(41, "1")), "error -9002 deep-eval exceeds 40 entries");
  EXPECT_EQ(deepEval({"1", std::string(255, '1')}),
            "error -9003 deep-eval entry exceeds 255 characters");
  EXPECT_TRUE(excel_->events().empty());
}

TEST_F(DeepHandlers, DeepEvalSeesThatExcelCutAnEntry) {
  excel_->quirks.longestText = 5;
  excel_->quirks.cutsLongFormulas = true;
  EXPECT_EQ(deepEval({"1+1+1+1"}), "error -9004 deep-eval: Excel truncated an entry");
  expectNothingLeft();
  excel_->quirks.cutsLongFormulas = false;
  excel_->quirks.ignoresLongFormulas = true;
  EXPECT_EQ(deepEval({"1+1+1+1"}), "error -9004 deep-eval: Excel truncated an entry");
  expectNothingLeft();
}

TEST_F(DeepHandlers, DeepEvalRefusesResultsThatSpill) {
  EXPECT_EQ(deepEval({"1", "{1;2;3}"}), "error -9005 deep-eval: an intermediate result spilled");
  expectNothingLeft();
  EXPECT_EQ(deepEval({"{1,2}"}), "error -9005 deep-eval: an intermediate result spilled");
  expectNothingLeft();
}

// Only the name of an error takes the place of a value that is not there.
TEST_F(DeepHandlers, DeepEvalTakesNoOtherTextForAnError) {
  excel_->quirks.losesBlanks = true;
  EXPECT_EQ(deepEval({"\"\""}), "null");
  EXPECT_EQ(deepEval({"1/0"}), "\"#DIV\\/0!\"");
}

TEST_F(DeepHandlers, DeepEvalGivesUpWhenExcelTakesTooLong) {
  memory_->script.atEvery("setFormula", {.takes = std::chrono::seconds(61)});
  EXPECT_EQ(deepEval({"1+1"}), "error -1712 Microsoft Excel got an error: AppleEvent timed out.");
  expectNothingLeft();
  memory_->script.atEvery("makeWorkbook", {.takes = std::chrono::seconds(9)});
  EXPECT_EQ(deepEval({"1+1"}), "error -1712 Microsoft Excel got an error: AppleEvent timed out.");
  expectNothingLeft();
}

// Neither a blank one that was there before, nor one that comes while ours is made.
TEST_F(DeepHandlers, DeepEvalTakesNoWorkbookOfTheUsersForItsOwn) {
  memory_->open({.name = "Untouched", .sheets = {{"Sheet1", {}}}});
  memory_->activateWorkbook("Known.xlsx");
  const std::vector<std::string> users{"Known.xlsx", "Untouched"};
  excel_->quirks.forgetsWhatItMade = true;
  EXPECT_EQ(deepEval({"1+1"}), "2");
  EXPECT_EQ(memory_->workbooks(), users);
  excel_->forget();
  excel_->loseAnswerOf(3, {-1712, "Lost.", {}});
  EXPECT_THAT(deepEval({"1+1"}), testing::StartsWith("error -1712 "));
  EXPECT_EQ(memory_->workbooks(), users);
  excel_->forget();
  excel_->failAt(3, {-1712, "Never made.", {}});
  EXPECT_THAT(deepEval({"1+1"}), testing::StartsWith("error -1712 "));
  EXPECT_EQ(memory_->workbooks(), users);
}

TEST_F(DeepHandlers, DeepEvalKnowsItsWorkbookFromOneThatTheUserMakesMeanwhile) {
  for (const int event : {3, 4}) {  // before ours is made, and after it
    const std::string theirs = "Untouched" + std::to_string(event);
    excel_->forget();
    excel_->meanwhile(event, [&] { memory_->open({.name = theirs, .sheets = {{"Sheet1", {}}}}); });
    EXPECT_EQ(deepEval({"1+1"}), "2");
    EXPECT_EQ(memory_->workbooks(), (std::vector<std::string>{"Known.xlsx", theirs}));
    memory_->close(theirs);
    memory_->activateWorkbook("Known.xlsx");
  }
}

TEST_F(DeepHandlers, DeepEvalDoesWithoutAnOpenWorkbook) {
  memory_->close("Known.xlsx");
  EXPECT_EQ(deepEval({"1+1"}), "2");
  EXPECT_EQ(run("qx_workbookcount"), "0");
}

TEST_F(DeepHandlers, MapTakesAWorkbookWithOneSheetAndNoNames) {
  memory_->open({.name = "Bare.xlsx", .sheets = {{"Only", {{"C3", 1.0}}}}});
  EXPECT_EQ(run("qx_workbookmap"), R"j(["Bare.xlsx",["Only"],["$C$3"],[],[]])j");
  excel_->quirks.baresSingles = true;
  EXPECT_EQ(run("qx_workbookmap"), R"j(["Bare.xlsx",["Only"],["$C$3"],[],[]])j");
}

TEST_F(DeepHandlers, MapReadsTheUsedRangesOfFiftySheets) {
  fakes::WorkbookDescription book{.name = "Many.xlsx", .sheets = {}};
  for (int i = 1; i <= 60; ++i) book.sheets.push_back({"S" + std::to_string(i), {}});
  memory_->open(book);
  const auto parsed = Marshal::encode(JSONValue(Array(50, "$A$1")));
  const std::string map = run("qx_workbookmap");
  EXPECT_THAT(map, testing::HasSubstr("\"S60\"]," + parsed + ",[],[]]"));
}

}  // namespace
}  // namespace quorin
