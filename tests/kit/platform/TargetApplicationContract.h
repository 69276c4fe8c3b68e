// The contract of TargetApplication: what every implementation does while its program comes and
// goes. Each test program instantiates it with worlds of its own.
#pragma once

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

#include "kit/platform/TargetApplication.h"
#include "tests/fakes/Named.h"

namespace quorin {

// A target, and the hand that starts and ends its program.
class TargetWorld {
 public:
  virtual ~TargetWorld() = default;
  virtual TargetApplication& target() = 0;
  virtual void start() = 0;
  virtual void end() = 0;
};

using TargetWorldMaker = fakes::Named<std::unique_ptr<TargetWorld> (*)()>;

class TargetApplicationContract : public testing::TestWithParam<TargetWorldMaker> {
 protected:
  // What was found out may be believed for a moment.
  bool becomes(bool running) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (target().isRunning() != running) {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
  }
  TargetApplication& target() { return world_->target(); }

  const std::unique_ptr<TargetWorld> world_ = GetParam().value();
};

TEST_P(TargetApplicationContract, KnowsWhetherItRuns) {
  EXPECT_FALSE(target().isRunning());
  world_->start();
  EXPECT_TRUE(becomes(true));
  EXPECT_TRUE(target().isRunning());
  world_->end();
  EXPECT_TRUE(becomes(false));
  EXPECT_FALSE(target().isRunning());
  world_->start();
  EXPECT_TRUE(becomes(true)) << "it may come again";
  world_->end();
}

TEST_P(TargetApplicationContract, AnswersOnEveryThread) {
  world_->start();
  ASSERT_TRUE(becomes(true));
  std::atomic<int> running{0};
  std::vector<std::thread> askers;
  for (int i = 0; i < 4; ++i) {
    askers.emplace_back([&] {
      for (int k = 0; k < 50; ++k) running += target().isRunning() ? 1 : 0;
    });
  }
  for (std::thread& each : askers) each.join();
  EXPECT_EQ(running, 200);
  world_->end();
}

}  // namespace quorin
