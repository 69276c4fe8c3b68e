// The main loop's own dealings with signals, without a display.
#include <csignal>
#include <cstring>
#include <functional>
#include <glib.h>
#include <gtest/gtest.h>
#include <utility>

#include "app/linux/GLibMainLoop.h"
#include "app/linux/GtkApplicationPort.h"
#include "tests/app/contract/ApplicationContract.h"

namespace quorin {

Application& contract::application() {
  static GtkApplicationPort port;
  return port;
}

MainLoop& contract::applicationLoop() {
  static GLibMainLoop loop;
  return loop;
}

namespace {

class Launched : public ApplicationDelegate {
 public:
  explicit Launched(std::function<void()> launch) : launch_(std::move(launch)) {}
  void applicationDidFinishLaunching() override { launch_(); }
  void applicationWillTerminate() override { ++terminations; }

  int terminations = 0;

 private:
  std::function<void()> launch_;
};

TEST(GtkApplicationPort, EndsAsTheUserWouldAtASignalThatAsksForIt) {
  std::signal(SIGHUP, SIG_DFL);  // the tests may be started by nohup
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    GtkApplicationPort port;
    Launched delegate([number] { std::raise(number); });
    port.setDelegate(delegate);
    port.run();
    EXPECT_EQ(delegate.terminations, 1) << strsignal(number);
  }
}

// What comes after run() finds everything done, and nothing comes any more.
TEST(GtkApplicationPort, EndsOnceHoweverLateItsDelegateGoesOn) {
  class Late : public Launched {
   public:
    using Launched::Launched;
    void applicationShouldTerminate(GoOn goOn) override { kept = std::move(goOn); }
    GoOn kept;
  };
  GtkApplicationPort port;
  Late delegate([&port] { port.terminate(); });
  port.setDelegate(delegate);
  port.run();
  EXPECT_EQ(delegate.terminations, 1);
  delegate.kept();
  delegate.kept();
  while (g_main_context_iteration(nullptr, FALSE)) {
  }
  EXPECT_EQ(delegate.terminations, 1);
}

TEST(GtkApplicationPort, OutlivesItsTerminalWhereThatIsWanted) {
  std::signal(SIGHUP, SIG_IGN);
  bool survived = false;
  GtkApplicationPort port;
  Launched delegate([&] {
    std::raise(SIGHUP);
    g_timeout_add(
        50,
        [](gpointer data) -> gboolean {
          *static_cast<bool*>(data) = true;
          return G_SOURCE_REMOVE;
        },
        &survived);
    g_timeout_add(
        100,
        [](gpointer data) -> gboolean {
          static_cast<GtkApplicationPort*>(data)->terminate();
          return G_SOURCE_REMOVE;
        },
        &port);
  });
  port.setDelegate(delegate);
  port.run();
  EXPECT_TRUE(survived);
  EXPECT_EQ(delegate.terminations, 1);
  std::signal(SIGHUP, SIG_DFL);
}

}  // namespace
}  // namespace quorin
