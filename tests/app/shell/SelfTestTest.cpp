#include <gmock/gmock.h>
#include <map>
#include <set>

#include "app/shell/SelfTest.h"
#include "kit/excel/ExcelScript.h"
#include "tests/fakes/FakeRunner.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/ScriptedClock.h"
#include "tools/quorinctl/Lint.h"

namespace quorin {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Array = JSONValue::Array;

class SelfTestTest : public testing::Test {
 protected:
  // Answers for every handler but those that the test answers itself.
  void answerTheRest() {
    for (const char* handler :
         {"qx_probe", "qx_pollcell", "qx_readcell", "qx_evaluate", "qx_readrange",
          "qx_readformulas", "qx_select", "qx_activate", "qx_dependents", "qx_workbookmap",
          "qx_workbookcount", "qx_deepeval", "qx_cf_apply", "qx_cf_move", "qx_cf_clear",
          "qx_revealread", "qx_unhide", "qx_revealscroll"}) {
      if (!answered.contains(handler)) library.returns(handler, Array{1.0, "ok"});
    }
    const std::map<std::string, JSONValue> told{
        {"xx_bookcount", 0}, {"xx_open", Array{"Book7", "Sheet1"}}, {"xx_close", true}};
    for (const char* handler : {"xx_version",
                                "xx_evaluate",
                                "xx_condition_at_range",
                                "xx_condition_at_end",
                                "xx_move_condition",
                                "xx_no_dependents",
                                "xx_range_in_variable",
                                "xx_active_in_variable",
                                "xx_shapes",
                                "xx_long_address",
                                "xx_qualified_range",
                                "xx_errors_in_bulk",
                                "xx_bookcount",
                                "xx_open",
                                "xx_close",
                                "xx_condition_specifier",
                                "xx_condition_language",
                                "xx_no_visible",
                                "xx_formula2",
                                "xx_evaluate_in_sheet",
                                "xx_missing_sheet",
                                "xx_errors_as_text"}) {
      const auto found = told.find(handler);
      if (!answered.contains(handler))
        experiments.returns(handler, found == told.end() ? JSONValue("told") : found->second);
    }
  }

  void fails(fakes::FakeExcel& excel, const char* handler, int number, const char* message) {
    excel.fails(handler, number, message);
    answered.insert(handler);
  }

  std::string run(SelfTest::PlatformFindings platform = {412, {}}) {
    answerTheRest();
    ExcelThread first(library.factory(), log.log());
    ExcelThread second(experiments.factory(), log.log(),
                       {std::string(SelfTest::experimentsSource())});
    return SelfTest({first, second, "1.2.3", {"macOS", "14.2", "Excel", "16.80"}, platform}).run();
  }

  static std::vector<std::string> handlers(const fakes::FakeExcel& excel) {
    std::vector<std::string> found;
    for (const auto& call : excel.calls()) found.push_back(call.handler);
    return found;
  }

  fakes::FakeExcel library, experiments;
  std::set<std::string> answered;
  fakes::LogLines log;
};

TEST_F(SelfTestTest, HasAScriptThatCompilesInExcelsWords) {
  std::vector<std::string> found;
  for (const ctl::Finding& finding : ctl::findingsOf(SelfTest::experimentsSource()))
    found.push_back(finding.message);
  EXPECT_THAT(found, testing::ElementsAre("active workbook follows the user even when stored: keep "
                                          "its name or address"))
      << "which is one of the questions";
}

TEST_F(SelfTestTest, TellsWhatEverythingAnswered) {
  const std::string report = run();
  EXPECT_THAT(report, HasSubstr("Quorin 1.2.3\nmacOS 14.2\nExcel 16.80\n"));
  EXPECT_THAT(report, HasSubstr("System interfaces: 412 checked, 0 missing\n"));
  EXPECT_THAT(report, HasSubstr("  handler library: compiled\n  experiments: compiled\n"));
  EXPECT_THAT(report, HasSubstr("  qx_readcell: [1,\"ok\"] ("));
  EXPECT_THAT(report, HasSubstr("  5 no dependents: \"told\" ("));
  EXPECT_THAT(report, HasSubstr("  200 calls off the main thread: 0 failed"));
  EXPECT_TRUE(report.ends_with("\nNothing failed.\n")) << report;
  EXPECT_EQ(handlers(experiments).back(), "xx_close");
  EXPECT_EQ(experiments.calls().back().arguments, JSONValue(Array{"Book7"}));
}

TEST_F(SelfTestTest, GivesTheUserFiveMinutesForThePermission) {
  answerTheRest();
  fakes::ScriptedClock clock;
  ExcelThread first(library.factory(), log.log());
  ExcelThread second(experiments.factory(), log.log(), {.source = "on run", .clock = &clock});
  SelfTest({first, second, "1.2.3", {}, {}}).run();
  const auto waits = clock.waits();
  ASSERT_GE(waits.size(), 2u);
  EXPECT_EQ(waits[0], std::chrono::seconds(300)) << "the first question alone";
  EXPECT_EQ(waits[1], std::chrono::seconds(65));
}

TEST_F(SelfTestTest, CountsWhatFailedAndGoesOn) {
  fails(library, "qx_readrange", -1708, "cannot");
  fails(experiments, "xx_shapes", -50, "parameter error");
  const std::string report = run({10, {"-[NSPanel fly]"}});
  EXPECT_THAT(report, HasSubstr("  MISSING -[NSPanel fly]\n"));
  EXPECT_THAT(report, HasSubstr("  qx_readrange: ERROR -1708: cannot ("));
  EXPECT_THAT(report, HasSubstr("value2 of A1:B2: ERROR -50: parameter error ("));
  EXPECT_TRUE(report.ends_with("\n2 failed.\n")) << "a question may be answered by an error";
  EXPECT_EQ(handlers(experiments).back(), "xx_close");
}

TEST_F(SelfTestTest, TriesNothingInExcelWhenAScriptDoesNotCompile) {
  library.failCompile({-2741, "Expected end of line"});
  const std::string report = run();
  EXPECT_THAT(report, HasSubstr("handler library: AppleScript compile failed: -2741"));
  EXPECT_THAT(report, HasSubstr("\n1 failed.\n"));
  EXPECT_THAT(handlers(experiments), IsEmpty());
}

TEST_F(SelfTestTest, StopsWithoutAScratchWorkbook) {
  fails(experiments, "xx_open", -1743, "Not authorized");
  const std::string report = run();
  EXPECT_THAT(report, HasSubstr("scratch workbook: ERROR -1743: Not authorized"));
  EXPECT_THAT(handlers(library), IsEmpty());
  EXPECT_THAT(handlers(experiments), Not(testing::Contains("xx_close")));
}

TEST_F(SelfTestTest, RisksNothingWhileTheUserHasWorkbooksOpen) {
  experiments.returns("xx_bookcount", 2);
  answered.insert("xx_bookcount");
  const std::string report = run();
  EXPECT_THAT(report, HasSubstr("  1, 10 not tried: "));
  EXPECT_THAT(handlers(experiments), Not(testing::Contains("xx_errors_in_bulk")));
  EXPECT_THAT(handlers(experiments), Not(testing::Contains("xx_missing_sheet")));
}

// The numbers are those of the questions in docs/macos.md; 9 is the owner's to answer.
TEST_F(SelfTestTest, AnswersEveryQuestion) {
  const std::string report = run();
  for (const char* number : {"1 ", "2 ", "3 ", "4 ", "5 ", "6 ", "7 ", "8 ", "10 "}) {
    EXPECT_THAT(report, HasSubstr(std::string("\n  ") + number));
  }
}

TEST_F(SelfTestTest, RisksACrashWhenNothingCanBeLost) {
  run();
  EXPECT_THAT(handlers(experiments), testing::Contains("xx_errors_in_bulk"));
}

}  // namespace
}  // namespace quorin
