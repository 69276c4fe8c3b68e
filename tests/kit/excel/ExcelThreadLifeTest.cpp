// Compiling, posted work, the main thread, and the end.
#include <gmock/gmock.h>

#include "kit/excel/ExcelScript.h"
#include "kit/excel/ExcelThread.h"
#include "kit/platform/Thread.h"
#include "kit/support/SerialQueue.h"
#include "tests/fakes/FakeRunner.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/ScriptedClock.h"

namespace quorin {
namespace {

using fakes::FakeExcel;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class ExcelThreadLife : public testing::Test {
 protected:
  std::unique_ptr<ExcelThread> make() { return make(excel_.factory()); }
  std::unique_ptr<ExcelThread> make(ScriptRunnerFactory factory) {
    ExcelThread::Options options;
    options.source = "on run";
    options.clock = &clock_;
    return std::make_unique<ExcelThread>(std::move(factory), log_.log(), options);
  }

  static std::string failure(ExcelThread& thread) {
    try {
      thread.call("qx_demo", {}, 3);
    } catch (const ExcelError& error) {
      return std::to_string(error.code()) + " " + error.message();
    }
    return "(no error)";
  }

  FakeExcel excel_;
  fakes::LogLines log_;
  fakes::ScriptedClock clock_;
};

TEST_F(ExcelThreadLife, CompilesTheLibraryOnceBeforeItServes) {
  ExcelThread thread(excel_.factory(), log_.log());
  EXPECT_EQ(excel_.source(), ExcelScript::source());
  EXPECT_EQ(thread.compileError(), std::nullopt);
  excel_.returns("qx_demo", 1);
  thread.call("qx_demo", {}, 3);
  thread.call("qx_demo", {}, 3);
  EXPECT_THAT(excel_.threads(), testing::SizeIs(3)) << "one compile, two calls";
}

TEST_F(ExcelThreadLife, FailsEveryCallWhenTheLibraryDoesNotCompile) {
  excel_.failCompile({-2741, "Expected end of line but found identifier."});
  const auto thread = make();
  const std::string text =
      "AppleScript compile failed: -2741: Expected end of line but found identifier.";
  EXPECT_EQ(thread->compileError(), text);
  EXPECT_EQ(failure(*thread), "-9991 " + text);
  EXPECT_EQ(failure(*thread), "-9991 " + text);
  EXPECT_THROW(thread->callForTerminate("qx_demo", {}), ExcelError);
  EXPECT_THAT(excel_.calls(), IsEmpty());
}

TEST_F(ExcelThreadLife, FillsInWhatTheCompileErrorLacks) {
  excel_.failCompile({});
  EXPECT_EQ(make()->compileError(), "AppleScript compile failed: -1: unknown error");
}

TEST_F(ExcelThreadLife, TakesAFactoryThatThrowsForAFailedCompile) {
  const auto thread = make([](CallThreadPost) -> std::unique_ptr<ScriptRunner> {
    throw std::runtime_error("no script system");
  });
  EXPECT_EQ(failure(*thread), "-9991 AppleScript compile failed: -1: no script system");
}

TEST_F(ExcelThreadLife, WaitsThirtySecondsForTheCompile) {
  make();
  EXPECT_EQ(clock_.waitsOutside().front(), seconds(30));
}

TEST_F(ExcelThreadLife, FailsEveryCallWhenTheCompileDoesNotEnd) {
  Semaphore began;
  Semaphore mayEnd;
  excel_.onCompile([&] {
    began.signal();
    mayEnd.wait();
  });
  clock_.timesOutOutside([&] { began.wait(); });
  const auto thread = make();
  EXPECT_EQ(thread->compileError(), "AppleScript compile did not finish within 30s");
  mayEnd.signal();
  EXPECT_EQ(failure(*thread), "-9991 AppleScript compile did not finish within 30s");
  EXPECT_THAT(excel_.calls(), IsEmpty());
}

TEST_F(ExcelThreadLife, RunsPostedWorkOnItsThreadInOrderBetweenCalls) {
  const auto thread = make();
  std::vector<std::string> order;  // touched on the call thread alone, read after a call
  excel_.answer("qx_demo", [&](const AppleEvent&) {
    excel_.post()([&] { order.push_back("posted during the call, on " + currentThreadName()); });
    order.push_back("call");
    return ScriptReply{};
  });
  excel_.returns("qx_last", 1);
  excel_.post()([&] { order.push_back("posted before"); });
  thread->call("qx_demo", {}, 3);
  thread->call("qx_last", {}, 3);
  EXPECT_THAT(order,
              ElementsAre("posted before", "call", "posted during the call, on \"qx.excel\""));
}

TEST_F(ExcelThreadLife, IgnoresWorkPostedAfterItsEnd) {
  auto thread = make();
  const CallThreadPost post = excel_.post();
  thread.reset();
  post([] { ADD_FAILURE() << "ran without a thread"; });
}

TEST_F(ExcelThreadLife, TakesTheRunnerWithIt) {
  auto thread = make();
  EXPECT_EQ(excel_.runnersAlive(), 1);
  thread.reset();
  EXPECT_EQ(excel_.runnersAlive(), 0);
}

TEST_F(ExcelThreadLife, DoesNotWaitForAStuckRunnerAtItsEnd) {
  Semaphore began;
  Semaphore mayEnd;
  excel_.answer("qx_demo", [&](const AppleEvent&) {
    began.signal();
    mayEnd.wait();
    return ScriptReply{};
  });
  auto thread = make();
  clock_.timesOut([&] { began.wait(); });
  EXPECT_EQ(failure(*thread), "-9990 Excel did not respond within 3s");
  clock_.timesOutOutside();
  thread.reset();
  EXPECT_EQ(clock_.waitsOutside().back(), seconds(2));
  EXPECT_EQ(excel_.runnersAlive(), 1);
  mayEnd.signal();
  RunnerThread::joinAbandoned();
  EXPECT_EQ(excel_.runnersAlive(), 0);
}

TEST_F(ExcelThreadLife, SharesTheOneThatMainSetUp) {
  auto thread = make();
  ExcelThread::setShared(thread.get());
  EXPECT_EQ(&ExcelThread::shared(), thread.get());
}

// These end the process half way, so they have nothing that would need tidying up.
class ExcelThreadDeathTest : public testing::Test {
 protected:
  ExcelThreadDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  // Calls on the thread that is the main one.
  static JSONValue onMainThread(JSONValue (*call)(ExcelThread&)) {
    FakeExcel excel;
    excel.returns("qx_demo", 1);
    DiagLog log("/dev/null/none.log", 1, 1);
    MainThread::record();
    ExcelThread thread(excel.factory(), log);
    return call(thread);
  }
};

TEST_F(ExcelThreadDeathTest, StopsWhenCalledOnTheMainThread) {
  EXPECT_DEATH(onMainThread([](ExcelThread& thread) { return thread.call("qx_demo", {}, 3); }),
               "ExcelThread::call.*main");
}

TEST_F(ExcelThreadDeathTest, LetsTerminationCallOnTheMainThread) {
  EXPECT_EXIT(
      {
        const JSONValue result = onMainThread(
            [](ExcelThread& thread) { return thread.callForTerminate("qx_demo", {}); });
        std::_Exit(result == JSONValue(1) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(ExcelThreadDeathTest, StopsWhenNobodySetUpTheSharedOne) {
  EXPECT_DEATH(ExcelThread::shared(), "ExcelThread::shared was asked for before main set it up");
}

TEST_F(ExcelThreadDeathTest, ForgetsTheSharedOneWhenItGoes) {
  EXPECT_DEATH(
      {
        onMainThread([](ExcelThread& thread) {
          ExcelThread::setShared(&thread);
          return JSONValue();
        });
        ExcelThread::shared();
      },
      "ExcelThread::shared was asked for before main set it up");
}

}  // namespace
}  // namespace quorin
