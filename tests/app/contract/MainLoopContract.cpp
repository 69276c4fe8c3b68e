#include <thread>

#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

using namespace std::chrono_literals;

class MainLoopContract : public PortContract {
 protected:
  MainLoop& loop = platform().mainLoop();
};

TEST_F(MainLoopContract, KnowsItsThread) {
  EXPECT_TRUE(loop.isMainThread());
  bool elsewhere = true;
  std::thread([&] { elsewhere = loop.isMainThread(); }).join();
  EXPECT_FALSE(elsewhere);
}

TEST_F(MainLoopContract, RunsWhatIsPostedInOrderAndNeverInsideTheCall) {
  std::string done;
  loop.post([&] {
    loop.post([&] { done += "c"; });
    done += "a";
  });
  loop.post([&] { done += "b"; });
  EXPECT_EQ(done, "");
  EXPECT_TRUE(waitUntil([&] { return done.size() >= 3; }));
  EXPECT_EQ(done, "abc");
}

TEST_F(MainLoopContract, RunsOnTheMainThreadWhatOtherThreadsPost) {
  std::vector<int> order;
  bool here = true;
  std::thread([&] {
    for (int i = 0; i < 1000; ++i) {
      loop.post([&, i] {
        order.push_back(i);
        here = here && loop.isMainThread();
      });
    }
  }).join();
  EXPECT_TRUE(waitUntil([&] { return order.size() == 1000; }));
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
  EXPECT_TRUE(here);
}

TEST_F(MainLoopContract, FiresOnceAfterTheInterval) {
  int fired = 0;
  const auto start = now();
  const auto timer = loop.startTimer(50ms, TimerKind::once, [&] { ++fired; });
  EXPECT_EQ(fired, 0);
  EXPECT_TRUE(waitUntil([&] { return fired > 0; }));
  EXPECT_GE(now() - start, 45ms);
  runFor(200ms);
  EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopContract, RepeatsUntilTheTimerIsDestroyed) {
  int fired = 0;
  auto timer = loop.startTimer(20ms, TimerKind::repeating, [&] { ++fired; });
  EXPECT_TRUE(waitUntil([&] { return fired >= 3; }));
  timer.reset();
  const int before = fired;
  runFor(150ms);
  EXPECT_EQ(fired, before);
}

TEST_F(MainLoopContract, LetsATimerDestroyItselfInItsAction) {
  int fired = 0;
  std::unique_ptr<Timer> timer;
  timer = loop.startTimer(10ms, TimerKind::repeating, [&, kept = std::string("still here")] {
    timer.reset();
    fired += kept == "still here" ? 1 : 100;
  });
  EXPECT_TRUE(waitUntil([&] { return fired > 0; }));
  runFor(100ms);
  EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopContract, SkipsWhatALateTimerMissed) {
  int fired = 0;
  const auto timer = loop.startTimer(20ms, TimerKind::repeating, [&] { ++fired; });
  stall(400ms);
  const auto late = now();
  ASSERT_TRUE(waitUntil([&] { return fired > 0; }));
  runFor(30ms);
  EXPECT_LE(fired, (now() - late) / 20ms + 2);
}

TEST_F(MainLoopContract, RunsWhatIsPostedWithItsOwnThingsAlive) {
  const auto kept = std::make_shared<int>(0);
  loop.post([kept] { ++*kept; });
  const auto timer = loop.startTimer(10ms, TimerKind::once, [kept] { ++*kept; });
  EXPECT_TRUE(waitUntil([&] { return *kept == 2; }));
  EXPECT_TRUE(waitUntil([&] { return kept.use_count() <= 2; })) << "the timer's own at most";
}

class ClockContract : public PortContract {};

TEST_F(ClockContract, GoesForwardWithTheLoop) {
  Clock& clock = platform().clock();
  const auto today = clock.now();
  const auto before = clock.steadyNow();
  runFor(30ms);
  EXPECT_GE(clock.steadyNow() - before, 30ms);
  EXPECT_GE(clock.now() - today, 20ms);
  stall(30ms);
  EXPECT_GE(clock.steadyNow() - before, 60ms);
}

}  // namespace
}  // namespace quorin::contract
