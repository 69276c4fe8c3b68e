// How the application ends. The end of an NSApplication is the end of its process, so each case has
// one of its own.
#include <csignal>
#include <cstdlib>
#import <dispatch/dispatch.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "app/shell/EndingSignals.h"
#include "tests/app/contract/ApplicationContract.h"
#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {

Application& application() {
  return platform().application();
}

MainLoop& applicationLoop() {
  return platform().mainLoop();
}

namespace {

constexpr int endedWell = 57;

class Ended : public ApplicationDelegate {
 public:
  void applicationDidFinishLaunching() override {}
  void applicationWillTerminate() override { std::_Exit(endedWell); }
};

void runAndSend(int signal, bool withAnAlert) {
  Ended ended;
  platform().application().setDelegate(ended);
  const auto soon = static_cast<int64_t>(NSEC_PER_SEC / 2);
  // From a timer: what the main queue runs next waits for what it runs now.
  const std::unique_ptr<Timer> asking = platform().mainLoop().startTimer(
      std::chrono::milliseconds(1), TimerKind::once, [withAnAlert] {
        if (withAnAlert) platform().alerts().show({"A question", "", {"OK"}}, [](std::size_t) {});
      });
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, soon), dispatch_get_main_queue(), ^{
    ::kill(::getpid(), signal);
  });
  platform().application().run();
}

TEST(MacApplicationDeathTest, EndsAsTheUserWouldAtASignalThatAsksForIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const int signal : endingSignals())
    EXPECT_EXIT(runAndSend(signal, false), testing::ExitedWithCode(endedWell), "") << signal;
}

TEST(MacApplicationDeathTest, EndsAtASignalWhileAnAlertIsOpen) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runAndSend(SIGTERM, true), testing::ExitedWithCode(endedWell), "");
}

}  // namespace
}  // namespace quorin::contract
