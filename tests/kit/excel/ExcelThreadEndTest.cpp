// Termination: several last calls with one deadline, and no others.
#include <gmock/gmock.h>
#include <thread>

#include "kit/excel/ExcelThread.h"
#include "tests/fakes/FakeRunner.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/ScriptedClock.h"

namespace quorin {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ExcelThreadEnd : public testing::Test {
 protected:
  static std::string failure(const std::function<void()>& action) {
    try {
      action();
    } catch (const ExcelError& error) {
      return std::to_string(error.code()) + " " + error.message();
    }
    return "(no error)";
  }

  fakes::FakeExcel excel_;
  fakes::LogLines log_;
  fakes::ScriptedClock clock_;
  ExcelThread thread_{excel_.factory(), log_.log(), {.source = "on run", .clock = &clock_}};
};

TEST_F(ExcelThreadEnd, RefusesOrdinaryCallsOnceItHasBegun) {
  excel_.returns("qx_demo", 1);
  EXPECT_FALSE(thread_.isTerminating());
  thread_.callForTerminate("qx_demo", {});
  EXPECT_EQ(thread_.call("qx_demo", {}, 3), JSONValue(1)) << "a single last call ends nothing";
  const ExcelThread::Deadline deadline = thread_.beginTermination();
  EXPECT_TRUE(thread_.isTerminating());
  EXPECT_EQ(failure([&] { thread_.call("qx_demo", {}, 3); }), "-9992 Quorin is quitting");
  EXPECT_EQ(thread_.callForTerminate("qx_demo", {}, deadline), JSONValue(1));
  EXPECT_THAT(excel_.calls(), SizeIs(3));
}

TEST_F(ExcelThreadEnd, RefusesCallsThatWaitForTheirTurn) {
  Semaphore began, mayEnd;
  excel_.answer("qx_slow", [&](const AppleEvent&) {
    began.signal();
    mayEnd.wait();
    return ScriptReply{};
  });
  std::string waiting;
  std::thread first([&] { thread_.call("qx_slow", {}, 3); });
  began.wait();
  std::thread second([&] { waiting = failure([&] { thread_.call("qx_demo", {}, 3); }); });
  thread_.beginTermination();
  mayEnd.signal();
  first.join();
  second.join();
  EXPECT_EQ(waiting, "-9992 Quorin is quitting");
  EXPECT_THAT(excel_.calls(), SizeIs(1));
}

TEST_F(ExcelThreadEnd, SharesTwoSecondsBetweenTheLastCalls) {
  excel_.returns("qx_demo", 1);
  const ExcelThread::Deadline deadline = thread_.beginTermination();
  clock_.signalled(milliseconds(1500));
  thread_.callForTerminate("qx_demo", {}, deadline);
  clock_.timesOut();
  EXPECT_EQ(failure([&] { thread_.callForTerminate("qx_demo", {}, deadline); }),
            "-9990 Excel did not respond within 0s");
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(2), milliseconds(500)));
}

TEST_F(ExcelThreadEnd, WaitsForASemaphoreNoLongerThanTheDeadline) {
  const ExcelThread::Deadline deadline = thread_.beginTermination();
  Semaphore semaphore;
  clock_.timesOutOutside();
  EXPECT_FALSE(thread_.waitUntil(semaphore, deadline));
  EXPECT_EQ(clock_.waitsOutside().back(), seconds(2));
  semaphore.signal();
  EXPECT_TRUE(thread_.waitUntil(semaphore, deadline));
  EXPECT_EQ(clock_.waitsOutside().back(), seconds(0)) << "never less than nothing";
}

}  // namespace
}  // namespace quorin
