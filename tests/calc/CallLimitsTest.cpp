#include <gtest/gtest.h>

#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {
namespace {

using Clock = std::chrono::steady_clock;

int failureOf(const CallLimits& limits) {
  try {
    limits.check();
    return 0;
  } catch (const SpreadsheetError& failure) {
    return failure.number();
  }
}

TEST(CallLimits, AreNoneByThemselves) {
  const CallLimits limits;
  EXPECT_EQ(failureOf(limits), 0);
  EXPECT_FALSE(limits.terms().asked);
}

TEST(CallLimits, EndTheWorkOnceTheCallerHasLeft) {
  bool hasLeft = false;
  CallLimits limits;
  limits.begin({.isOver = [&] { return hasLeft; }});
  EXPECT_EQ(failureOf(limits), 0);
  hasLeft = true;
  EXPECT_EQ(failureOf(limits), -1712);
}

TEST(CallLimits, EndTheWorkWhenTheTimeOfTheEventIsUp) {
  CallLimits limits;
  limits.begin({});
  limits.waitUntil(Clock::now() + std::chrono::hours(1));
  EXPECT_EQ(failureOf(limits), 0);
  limits.waitUntil(Clock::now() - std::chrono::milliseconds(1));
  EXPECT_EQ(failureOf(limits), -1712);
}

TEST(CallLimits, HoldForOneCallAlone) {
  CallLimits limits;
  const auto last = [&] {
    limits.begin({.asked = true, .isOver = [] { return true; }});
    limits.waitUntil(Clock::now() - std::chrono::milliseconds(1));
    EXPECT_TRUE(limits.terms().asked);
    EXPECT_EQ(failureOf(limits), -1712);
  };
  last();
  limits.end();
  EXPECT_FALSE(limits.terms().asked);
  EXPECT_EQ(failureOf(limits), 0);
  last();
  limits.begin({.isOver = [] { return false; }});
  EXPECT_FALSE(limits.terms().asked);
  EXPECT_EQ(failureOf(limits), 0);
}

}  // namespace
}  // namespace quorin::host::calc
