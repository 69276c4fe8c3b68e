#include <csignal>
#include <gtest/gtest.h>

#include "app/shell/EndingSignals.h"

namespace quorin {
namespace {

TEST(EndingSignals, AreThoseThatAskAProcessToEnd) {
  std::signal(SIGHUP, SIG_DFL);
  EXPECT_EQ(endingSignals(), (std::vector<int>{SIGINT, SIGTERM, SIGHUP}));
}

TEST(EndingSignals, LackAHangUpThatIsIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  EXPECT_EQ(endingSignals(), (std::vector<int>{SIGINT, SIGTERM}));
  std::signal(SIGHUP, SIG_DFL);
}

}  // namespace
}  // namespace quorin
