// The application object's life: what it leaves to AppKit and the system when it goes, and how it
// answers AppKit's questions. The end of its process is in tests/app/macos/MacApplicationTest.mm.
#include <csignal>
#include <optional>

#import "app/macos/MacApplication.h"
#include "app/shell/EndingSignals.h"
#include "tests/app/contract/ContractWorld.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;

class Asked : public ApplicationDelegate {
 public:
  void applicationDidFinishLaunching() override {}
  void applicationShouldTerminate(GoOn goOn) override {
    ++questions;
    kept = std::move(goOn);
  }
  void applicationWillTerminate() override { ++ends; }
  void applicationShouldHandleReopen() override { ++reopenings; }

  int questions = 0, ends = 0, reopenings = 0;
  GoOn kept;
};

// Another application object than that of the program, which has AppKit's ear while it lives.
class MacApplicationLife : public contract::PortContract {
 protected:
  // What the program's own left to its pool is there before anything is counted.
  static void SetUpTestSuite() {
    @autoreleasepool {
      MacApplication();
    }
  }

  ~MacApplicationLife() override {
    static Asked nobody;
    contract::platform().application().setDelegate(nobody);
  }

  static id<NSApplicationDelegate> delegate() { return NSApplication.sharedApplication.delegate; }

  Asked asked;
};

TEST_F(MacApplicationLife, LeavesNothingBehind) {
  id<NSApplicationDelegate> known = nil;
  {
    MacApplication application;
    application.setDelegate(asked);
    runFor(20ms);  // until the signals' sources are registered
    known = delegate();
    ASSERT_NE(known, nil);
    [known applicationShouldHandleReopen:NSApplication.sharedApplication hasVisibleWindows:NO];
    EXPECT_EQ(asked.reopenings, 1);
  }
  EXPECT_EQ(delegate(), nil);
  [known applicationShouldHandleReopen:NSApplication.sharedApplication hasVisibleWindows:NO];
  EXPECT_EQ([known applicationShouldTerminate:NSApplication.sharedApplication], NSTerminateNow);
  EXPECT_EQ(asked.reopenings, 1) << "who has gone is not told";
  EXPECT_EQ(asked.questions, 0);
}

TEST_F(MacApplicationLife, EndsThoughWhoMaySayItGoesOnIsStillThere) {
  id<NSApplicationDelegate> __weak known = nil;
  {
    MacApplication application;
    application.setDelegate(asked);
    runFor(20ms);
    @autoreleasepool {
      known = delegate();
      EXPECT_EQ([delegate() applicationShouldTerminate:NSApplication.sharedApplication],
                NSTerminateLater);
    }
    EXPECT_EQ(asked.questions, 1);
  }
  runFor(ApplicationDelegate::longestDelay + 50ms);
  EXPECT_EQ(known, nil) << "what was kept of it keeps it alive";
  asked.kept();
}

TEST_F(MacApplicationLife, IsNoProgramThatIgnoresSignals) {
  runFor(20ms);  // until the signals' sources are registered
  for (const int signal : endingSignals()) {
    struct sigaction now {};
    ASSERT_EQ(::sigaction(signal, nullptr, &now), 0);
    EXPECT_NE(now.sa_handler, SIG_IGN) << "what we start would ignore it, too";
    EXPECT_NE(now.sa_handler, SIG_DFL) << signal;
  }
}

TEST_F(MacApplicationLife, IsAnAccessory) {
  contract::platform().application().setAccessory();
  EXPECT_EQ(NSApplication.sharedApplication.activationPolicy,
            NSApplicationActivationPolicyAccessory);
}

}  // namespace
}  // namespace quorin
