#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <vector>

#include "kit/platform/Thread.h"
#include "kit/support/SerialQueue.h"
#include "tests/fakes/ManualQueue.h"

namespace quorin {
namespace {

TEST(SerialQueue, RunsWorkInOrderOnItsOwnThread) {
  std::vector<int> order;
  SerialQueue queue("qx.test");
  for (int i = 0; i < 100; ++i) {
    queue.post([&order, &queue, i] {
      EXPECT_TRUE(queue.isCurrent());
      EXPECT_EQ(currentThreadName(), "\"qx.test\"");
      order.push_back(i);
    });
  }
  queue.flush();
  EXPECT_FALSE(queue.isCurrent());
  ASSERT_EQ(order.size(), 100u);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(SerialQueue, KeepsTheOrderOfEachThreadThatPosts) {
  std::vector<std::pair<int, int>> order;
  SerialQueue queue("qx.test");
  std::vector<std::thread> posters;
  for (int poster = 0; poster < 4; ++poster) {
    posters.emplace_back([&, poster] {
      for (int i = 0; i < 200; ++i)
        queue.post([&order, poster, i] { order.push_back({poster, i}); });
    });
  }
  for (std::thread& poster : posters) poster.join();
  queue.flush();
  ASSERT_EQ(order.size(), 800u);
  std::vector<int> next(4, 0);
  for (const auto& [poster, i] : order) EXPECT_EQ(i, next[static_cast<std::size_t>(poster)]++);
}

TEST(SerialQueue, PostReturnsWhileWorkRuns) {
  std::promise<void> release;
  std::atomic<bool> ran = false;
  SerialQueue queue("qx.test");
  queue.post([&] { release.get_future().wait(); });
  queue.post([&] { ran = true; });
  EXPECT_FALSE(ran);
  release.set_value();
  queue.flush();
  EXPECT_TRUE(ran);
}

TEST(SerialQueue, SyncRunsAfterWhatWasPostedAndThrowsWhatTheWorkThrows) {
  int value = 0;
  SerialQueue queue("qx.test");
  queue.post([&] { value = 1; });
  queue.sync([&] { value = value * 10 + 2; });
  EXPECT_EQ(value, 12);
  EXPECT_THROW(queue.sync([] { throw std::runtime_error("no"); }), std::runtime_error);
  queue.sync([&] { value = 3; });
  EXPECT_EQ(value, 3);
}

TEST(SerialQueue, RunsEverythingBeforeItGoes) {
  std::vector<int> order;
  std::promise<void> release;
  {
    SerialQueue queue("qx.test");
    queue.post([&] { release.get_future().wait(); });
    queue.post([&] {
      order.push_back(1);
      queue.post([&] { order.push_back(3); });
    });
    queue.post([&] { order.push_back(2); });
    release.set_value();
  }
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(SerialQueue, LetsGoOfWorkOnceItHasRun) {
  auto held = std::make_shared<int>(1);
  SerialQueue queue("qx.test");
  queue.post([held] {});
  queue.flush();
  EXPECT_EQ(held.use_count(), 1);
}

TEST(SerialQueue, TakesWorkFromWhatItsWorkLetsGo) {
  struct PostsAtItsEnd {
    SerialQueue& queue;
    bool& ran;
    ~PostsAtItsEnd() {
      queue.post([&flag = ran] { flag = true; });
    }
  };
  bool ran = false;
  {
    SerialQueue queue("qx.test");
    queue.post([held = std::shared_ptr<PostsAtItsEnd>(new PostsAtItsEnd{queue, ran})] {});
  }
  EXPECT_TRUE(ran);
}

TEST(SerialQueueDeathTest, StopsRatherThanWaitForItself) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        SerialQueue queue("qx.test");
        queue.post([&] { queue.flush(); });
      },
      "waiting for the queue \"qx.test\" on its own thread \"qx.test\" would never end");
}

TEST(SerialQueueDeathTest, StopsWhenItsWorkThrows) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        SerialQueue queue("qx.test");
        queue.post([] { throw std::runtime_error("out of luck"); });
      },
      "work of the queue \"qx.test\" threw: out of luck");
}

TEST(SerialQueueDeathTest, StopsWhenItsWorkDestroysIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        auto queue = std::make_unique<SerialQueue>("qx.test");
        std::promise<void> never;
        queue->post([&] { queue.reset(); });
        never.get_future().wait();
      },
      "the queue \"qx.test\" was destroyed by its own work");
}

TEST(SerialQueueDeathTest, StopsWhenItsOwnEntryIsCalledElsewhere) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        nameCurrentThread("stray");
        SerialQueue queue("qx.test");
        queue.require("Bridge::dispatch");
      },
      "Bridge::dispatch belongs on the thread \"qx.test\" but was called on \"stray\"");
}

TEST(ManualQueue, RunsWorkWhenTold) {
  ManualQueue queue;
  std::vector<int> order;
  queue.post([&] { order.push_back(1); });
  queue.post([&] {
    EXPECT_TRUE(queue.isCurrent());
    queue.post([&] { order.push_back(3); });
    order.push_back(2);
  });
  EXPECT_EQ(queue.waiting(), 2u);
  EXPECT_TRUE(queue.runOne());
  EXPECT_EQ(order, (std::vector{1}));
  queue.sync([&] { order.push_back(4); });
  EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
  EXPECT_FALSE(queue.isCurrent());
  EXPECT_FALSE(queue.runOne());
}

}  // namespace
}  // namespace quorin
