// One display and one platform for all tests of the program; the main loop runs while a test waits.
#pragma once

#include <gmock/gmock.h>
#include <gtk/gtk.h>

#include "app/linux/GtkPlatform.h"
#include "app/shell/Panel.h"
#include "tests/fakes/ui/VirtualDisplay.h"

namespace quorin {

class GtkFixture : public testing::Test {
 public:
  static ui::VirtualDisplay* display;
  static GtkPlatform* platform;

 protected:
  // Runs the main loop until the condition holds; false when it does not within ten seconds.
  static bool waitUntil(const std::function<bool()>& condition) {
    const gint64 end = g_get_monotonic_time() + 10 * G_USEC_PER_SEC;
    const GSourceHandle wakeUp(g_timeout_add(
        10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr));
    while (!condition()) {
      if (g_get_monotonic_time() > end) return false;
      g_main_context_iteration(nullptr, TRUE);
    }
    return true;
  }

  // Runs the main loop for so long, where the absence of something is to be shown.
  static void runFor(std::chrono::milliseconds time) {
    bool over = false;
    const auto timer = platform->mainLoop().startTimer(time, TimerKind::once, [&] { over = true; });
    waitUntil([&] { return over; });
  }
};

}  // namespace quorin
