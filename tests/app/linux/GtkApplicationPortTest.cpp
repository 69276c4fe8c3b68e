// The main loop's own dealings with signals, without a display.
#include <csignal>
#include <cstring>
#include <functional>
#include <glib.h>
#include <gtest/gtest.h>
#include <utility>

#include "app/linux/GtkApplicationPort.h"

namespace quorin {
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
