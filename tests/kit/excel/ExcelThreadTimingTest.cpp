// Time-outs, the pending call and the still-busy rule. Time is the scripted clock's, so that every
// figure is exact; what really runs meanwhile waits for the test.
#include <gmock/gmock.h>

#include "kit/excel/ExcelThread.h"
#include "kit/support/SerialQueue.h"
#include "tests/fakes/FakeRunner.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/ScriptedClock.h"

namespace quorin {
namespace {

using fakes::FakeExcel;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;

class ExcelThreadTiming : public testing::Test {
 protected:
  ExcelThreadTiming() {
    // A handler that returns when the test says so.
    excel_.answer("qx_slow", [this](const AppleEvent&) {
      slowBegan_.signal();
      slowMayEnd_.wait();
      return ScriptReply{AppleEventDescriptor::text("late"), std::nullopt};
    });
    excel_.returns("qx_quick", "quick");
  }

  std::string outcome(const std::string& handler, double timeout, bool asked = false) {
    try {
      const JSONValue result = thread_.call(handler, {}, timeout, asked);
      return result.string() ? *result.string() : "(no text)";
    } catch (const ExcelError& error) {
      return std::to_string(error.code()) + " " + error.message();
    }
  }

  std::string terminateOutcome(const std::string& handler) {
    try {
      const JSONValue result = thread_.callForTerminate(handler, {});
      return result.string() ? *result.string() : "(no text)";
    } catch (const ExcelError& error) {
      return std::to_string(error.code()) + " " + error.message();
    }
  }

  // Makes a call that is given up while it runs.
  void leaveOnePending(double timeout = 3) {
    clock_.timesOut([this] { slowBegan_.wait(); });
    EXPECT_THAT(outcome("qx_slow", timeout), testing::StartsWith("-9990 Excel did not respond"));
  }

  // The clock's waits from here on.
  void forgetWaits() { forgotten_ = clock_.waits().size(); }
  std::vector<CallClock::Duration> waits() const {
    const auto all = clock_.waits();
    return {all.begin() + static_cast<std::ptrdiff_t>(forgotten_), all.end()};
  }

  FakeExcel excel_;
  fakes::LogLines log_;
  fakes::ScriptedClock clock_;
  Semaphore slowBegan_;
  Semaphore slowMayEnd_;
  ExcelThread thread_{excel_.factory(), log_.log(), {.source = "on run", .clock = &clock_}};
  std::size_t forgotten_ = 0;
};

TEST_F(ExcelThreadTiming, GivesACallItsWholeTimeoutWhenNothingIsPending) {
  EXPECT_EQ(outcome("qx_quick", 2.5), "quick");
  EXPECT_THAT(waits(), ElementsAre(milliseconds(2500)));
}

TEST_F(ExcelThreadTiming, TakesNothingOffTheBudgetForItsOwnWork) {
  clock_.tick(std::chrono::microseconds(1));
  clock_.timesOut([this] { slowBegan_.wait(); });
  EXPECT_EQ(outcome("qx_slow", 9), "-9990 Excel did not respond within 9s");
  EXPECT_THAT(waits(), ElementsAre(seconds(9)));
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, TimesOutWithTheWholeSecondsOfTheBudget) {
  clock_.timesOut([this] { slowBegan_.wait(); });
  EXPECT_EQ(outcome("qx_slow", 9.99), "-9990 Excel did not respond within 9s");
  EXPECT_THAT(log_.lines(), ElementsAre("PERF qx_slow 9990ms"));
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, IsStillBusyWhileTheLateCallRuns) {
  leaveOnePending();
  forgetWaits();
  clock_.timesOut();
  EXPECT_EQ(outcome("qx_quick", 3), "-9990 Excel is still busy with the previous call after 3s");
  EXPECT_THAT(waits(), ElementsAre(seconds(3)));
  clock_.timesOut();
  EXPECT_EQ(outcome("qx_quick", 10), "-9990 Excel is still busy with the previous call after 10s");
  EXPECT_THAT(excel_.calls(), testing::SizeIs(1)) << "nothing may be sent while Excel is busy";
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, GoesOnWhenTheLateCallHasEndedAndDropsItsResult) {
  leaveOnePending();
  slowMayEnd_.signal();
  EXPECT_EQ(outcome("qx_quick", 3), "quick");
  forgetWaits();
  EXPECT_EQ(outcome("qx_quick", 3), "quick");
  EXPECT_THAT(waits(), ElementsAre(seconds(3))) << "nothing is pending any more";
}

TEST_F(ExcelThreadTiming, LeavesNothingOfALateCallsTermsToTheNext) {
  bool lateIsOver = false, nextIsOver = true;
  excel_.answer("qx_asked", [&](const AppleEvent&) {
    slowBegan_.signal();
    slowMayEnd_.wait();
    lateIsOver = excel_.terms().back().isOver();
    return ScriptReply{};
  });
  excel_.answer("qx_next", [&](const AppleEvent&) {
    nextIsOver = excel_.terms().back().isOver();
    return ScriptReply{AppleEventDescriptor::text("next"), std::nullopt};
  });
  clock_.timesOut([this] { slowBegan_.wait(); });
  EXPECT_EQ(outcome("qx_asked", 3, true), "-9990 Excel did not respond within 3s");
  slowMayEnd_.signal();
  EXPECT_EQ(outcome("qx_next", 3), "next");
  const auto terms = excel_.terms();
  ASSERT_EQ(terms.size(), 2u);
  EXPECT_TRUE(terms[0].asked);
  EXPECT_TRUE(lateIsOver);
  EXPECT_FALSE(terms[1].asked);
  EXPECT_FALSE(nextIsOver);
}

TEST_F(ExcelThreadTiming, TakesTheWaitForTheLateCallOffTheBudget) {
  leaveOnePending();
  forgetWaits();
  clock_.signalled(seconds(1), [this] { slowMayEnd_.signal(); });
  EXPECT_EQ(outcome("qx_quick", 3), "quick");
  EXPECT_THAT(waits(), ElementsAre(seconds(3), seconds(2)));
}

TEST_F(ExcelThreadTiming, TellsOfWhatTheLateCallLeftOfTheBudget) {
  leaveOnePending();
  clock_.signalled(seconds(2), [this] { slowMayEnd_.signal(); });
  clock_.timesOut([this] { slowBegan_.wait(); });
  EXPECT_EQ(outcome("qx_slow", 9), "-9990 Excel did not respond within 7s");
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, NeverGivesACallLessThanATenthOfASecond) {
  leaveOnePending();
  forgetWaits();
  clock_.signalled(milliseconds(2950), [this] { slowMayEnd_.signal(); });
  EXPECT_EQ(outcome("qx_quick", 3), "quick");
  EXPECT_THAT(waits(), ElementsAre(seconds(3), milliseconds(100)));
}

TEST_F(ExcelThreadTiming, CallsATenthOfASecondZeroSeconds) {
  clock_.timesOut([this] { slowBegan_.wait(); });
  EXPECT_EQ(outcome("qx_slow", 0), "-9990 Excel did not respond within 0s");
  EXPECT_THAT(waits(), ElementsAre(milliseconds(100)));
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, MeasuresTheCallWithoutTheWaitForTheLateOne) {
  leaveOnePending();
  clock_.signalled(seconds(1), [this] { slowMayEnd_.signal(); });
  clock_.signalled(milliseconds(90));
  EXPECT_EQ(outcome("qx_quick", 3), "quick");
  EXPECT_THAT(log_.lines(), ElementsAre("PERF qx_slow 3000ms", "PERF qx_quick 90ms"));
}

TEST_F(ExcelThreadTiming, KeepsALateErrorFromTheNextCaller) {
  Semaphore mayFail;
  Semaphore began;
  excel_.answer("qx_fails", [&](const AppleEvent&) {
    began.signal();
    mayFail.wait();
    return ScriptReply{std::nullopt, ScriptErrorInfo{-50, "late error"}};
  });
  clock_.timesOut([&] { began.wait(); });
  EXPECT_EQ(outcome("qx_fails", 3), "-9990 Excel did not respond within 3s");
  mayFail.signal();
  EXPECT_EQ(outcome("qx_quick", 3), "quick");
}

TEST_F(ExcelThreadTiming, AnswersCallersOneAtATimeInOrder) {
  SerialQueue first("first");
  SerialQueue second("second");
  std::string firstOutcome;
  std::string secondOutcome;
  first.post([&] { firstOutcome = outcome("qx_slow", 60); });
  slowBegan_.wait();
  second.post([&] { secondOutcome = outcome("qx_quick", 60); });
  EXPECT_THAT(excel_.calls(), testing::SizeIs(1));
  slowMayEnd_.signal();
  first.flush();
  second.flush();
  EXPECT_EQ(firstOutcome, "late");
  EXPECT_EQ(secondOutcome, "quick");
}

TEST_F(ExcelThreadTiming, GivesTerminationTwoSeconds) {
  EXPECT_EQ(thread_.callForTerminate("qx_quick", {}), JSONValue("quick"));
  EXPECT_THAT(waits(), ElementsAre(seconds(2)));
}

TEST_F(ExcelThreadTiming, EndsTerminationsCallAfterTwoSeconds) {
  clock_.timesOut([this] { slowBegan_.wait(); });
  EXPECT_EQ(terminateOutcome("qx_slow"), "-9990 Excel did not respond within 2s");
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, AllowsTerminationTwoSecondsForTheLateCall) {
  leaveOnePending();
  forgetWaits();
  clock_.timesOut();
  EXPECT_EQ(terminateOutcome("qx_quick"),
            "-9990 Excel is still busy with the previous call after 2s");
  EXPECT_THAT(waits(), ElementsAre(seconds(2)));
  slowMayEnd_.signal();
}

TEST_F(ExcelThreadTiming, LetsTerminationWaitTwoSecondsForItsTurnAndNoLonger) {
  Semaphore inside;
  clock_.signalled(seconds(0), [&] { inside.signal(); });
  SerialQueue queue("caller");
  queue.post([this] { EXPECT_EQ(outcome("qx_slow", 65), "late"); });
  inside.wait();
  clock_.timesOutOutside();
  EXPECT_EQ(terminateOutcome("qx_quick"),
            "-9990 Excel is still busy with the previous call after 2s");
  EXPECT_THAT(clock_.waitsOutside(), ElementsAre(seconds(30), seconds(2)));
  slowMayEnd_.signal();
  queue.flush();
  queue.sync([this] { EXPECT_EQ(outcome("qx_quick", 3), "quick"); });
  EXPECT_THAT(excel_.calls(), testing::SizeIs(2)) << "the call that was given up never runs";
}

TEST_F(ExcelThreadTiming, TakesTheWaitForItsTurnOffTerminationsTwoSeconds) {
  Semaphore inside;
  clock_.signalled(milliseconds(1500), [&] { inside.signal(); });
  SerialQueue queue("caller");
  queue.post([this] { EXPECT_EQ(outcome("qx_slow", 65), "late"); });
  inside.wait();
  clock_.signalledOutside(seconds(0), [this] { slowMayEnd_.signal(); });
  EXPECT_EQ(terminateOutcome("qx_quick"), "quick");
  EXPECT_THAT(waits(), ElementsAre(seconds(65), milliseconds(500)));
  queue.flush();
}

}  // namespace
}  // namespace quorin
