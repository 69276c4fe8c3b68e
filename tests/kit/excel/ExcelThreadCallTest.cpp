// What a call sends and what comes back.
#include <gmock/gmock.h>

#include "kit/excel/ExcelThread.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/FakeRunner.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/ScriptedClock.h"

namespace quorin {
namespace {

using fakes::FakeExcel;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using Array = JSONValue::Array;
using Object = JSONValue::Object;

class ExcelThreadCall : public testing::Test {
 protected:
  // The error of a call, as "code message".
  std::string failure(const std::string& handler) {
    try {
      thread_.call(handler, {}, 3);
    } catch (const ExcelError& error) {
      return std::to_string(error.code()) + " " + error.message();
    }
    return "(no error)";
  }

  FakeExcel excel_;
  fakes::LogLines log_;
  fakes::ScriptedClock clock_;
  ExcelThread thread_{excel_.factory(), log_.log(), {.source = "on run", .clock = &clock_}};
};

TEST_F(ExcelThreadCall, SendsOneSubroutineEvent) {
  excel_.returns("qx_demo", nullptr);
  thread_.call("qx_demo", {"Sheet1!A1", 3, true}, 3);
  ASSERT_EQ(excel_.events().size(), 1u);
  const AppleEvent event = excel_.events().front();
  EXPECT_EQ(event.eventClass, fourCharCode("ascr"));
  EXPECT_EQ(event.eventID, fourCharCode("psbr"));
  ASSERT_EQ(event.parameters.size(), 2u);
  ASSERT_NE(event.parameter(fourCharCode("snam")), nullptr);
  EXPECT_EQ(*event.parameter(fourCharCode("snam")), AppleEventDescriptor::text("qx_demo"));
  ASSERT_NE(event.parameter(keyDirectObject), nullptr);
  EXPECT_EQ(*event.parameter(keyDirectObject),
            AppleEventDescriptor::list({AppleEventDescriptor::text("Sheet1!A1"),
                                        AppleEventDescriptor::integer(3),
                                        AppleEventDescriptor::boolean(true)}));
}

TEST_F(ExcelThreadCall, LowerCasesTheHandlerName) {
  excel_.returns("qx_demo", 1);
  EXPECT_EQ(thread_.call("QX_Demo", {}, 3), JSONValue(1));
  EXPECT_EQ(excel_.calls().front().handler, "qx_demo");
}

TEST_F(ExcelThreadCall, SendsAnEmptyListWithoutArguments) {
  excel_.returns("qx_demo", 1);
  thread_.call("qx_demo", {}, 3);
  EXPECT_EQ(*excel_.events().front().parameter(keyDirectObject), AppleEventDescriptor::list());
}

TEST_F(ExcelThreadCall, GivesTheResultAsAValue) {
  excel_.returns("qx_demo", Array{"a", 1.5, Array{true}});
  EXPECT_EQ(thread_.call("qx_demo", {}, 3), JSONValue(Array{"a", 1.5, Array{true}}));
}

TEST_F(ExcelThreadCall, GivesNullForAHandlerThatReturnsNothing) {
  excel_.answer("qx_demo", [](const AppleEvent&) { return ScriptReply{}; });
  EXPECT_EQ(thread_.call("qx_demo", {}, 3), JSONValue(nullptr));
}

TEST_F(ExcelThreadCall, PassesTheScriptsErrorOnUnchanged) {
  excel_.fails("qx_demo", -1728, "sheet not found: Sheet9");
  EXPECT_EQ(failure("qx_demo"), "-1728 sheet not found: Sheet9");
}

TEST_F(ExcelThreadCall, FillsInWhatTheErrorLacks) {
  excel_.fails("qx_nonumber", std::nullopt, "only words");
  excel_.fails("qx_nowords", -50, std::nullopt);
  excel_.fails("qx_nothing", std::nullopt, std::nullopt);
  EXPECT_EQ(failure("qx_nonumber"), "-1 only words");
  EXPECT_EQ(failure("qx_nowords"), "-50 AppleScript error");
  EXPECT_EQ(failure("qx_nothing"), "-1 AppleScript error");
}

TEST_F(ExcelThreadCall, CountsAnErrorEvenWhenThereIsAResult) {
  excel_.answer("qx_demo", [](const AppleEvent&) {
    return ScriptReply{AppleEventDescriptor::integer(1), ScriptErrorInfo{-50, "both"}};
  });
  EXPECT_EQ(failure("qx_demo"), "-50 both");
}

TEST_F(ExcelThreadCall, SurvivesARunnerThatThrows) {
  excel_.answer("qx_demo", [](const AppleEvent&) -> ScriptReply {
    throw std::runtime_error("against the rules");
  });
  excel_.returns("qx_after", 1);
  EXPECT_EQ(failure("qx_demo"), "-1 against the rules");
  EXPECT_EQ(thread_.call("qx_after", {}, 3), JSONValue(1));
}

TEST_F(ExcelThreadCall, GoesOnAfterAnError) {
  excel_.fails("qx_bad", -50, "no");
  excel_.returns("qx_good", 1);
  EXPECT_EQ(failure("qx_bad"), "-50 no");
  EXPECT_EQ(thread_.call("qx_good", {}, 3), JSONValue(1));
}

TEST_F(ExcelThreadCall, RunsTheScriptOnItsOwnThreadAlone) {
  excel_.returns("qx_demo", 1);
  thread_.call("qx_demo", {}, 3);
  thread_.callForTerminate("qx_demo", {});
  EXPECT_THAT(excel_.threads(), testing::SizeIs(3));
  EXPECT_THAT(excel_.threads(), Each("\"qx.excel\""));
}

TEST_F(ExcelThreadCall, LogsCallsFrom80MillisecondsOn) {
  using std::chrono::microseconds;
  using std::chrono::milliseconds;
  excel_.returns("qx_demo", 1);
  clock_.signalled(microseconds(79999));
  thread_.call("qx_demo", {}, 3);
  EXPECT_THAT(log_.lines(), IsEmpty());
  clock_.signalled(milliseconds(80));
  thread_.call("qx_demo", {}, 3);
  clock_.signalled(microseconds(132900));
  thread_.call("qx_demo", {}, 3);
  EXPECT_THAT(log_.lines(), ElementsAre("PERF qx_demo 80ms", "PERF qx_demo 132ms"));
}

TEST_F(ExcelThreadCall, LogsSlowCallsThatFailToo) {
  excel_.fails("qx_demo", -50, "no");
  clock_.signalled(std::chrono::milliseconds(200));
  EXPECT_EQ(failure("qx_demo"), "-50 no");
  EXPECT_THAT(log_.lines(), ElementsAre("PERF qx_demo 200ms"));
}

}  // namespace
}  // namespace quorin
