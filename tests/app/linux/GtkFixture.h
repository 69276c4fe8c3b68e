// One display and one platform for all tests of the program; the main loop runs while a test waits.
#pragma once

#include <gmock/gmock.h>
#include <gtk/gtk.h>

#include "app/linux/GtkPlatform.h"
#include "app/shell/Panel.h"
#include "tests/app/linux/EventLoop.h"
#include "tests/fakes/ui/VirtualDisplay.h"

namespace quorin {

class GtkFixture : public testing::Test {
 public:
  static ui::VirtualDisplay* display;
  static GtkPlatform* platform;

 protected:
  static bool waitUntil(const std::function<bool()>& condition) { return runUntil(condition); }

  // Runs the main loop for so long, where the absence of something is to be shown.
  static void runFor(std::chrono::milliseconds time) {
    bool over = false;
    const auto timer = platform->mainLoop().startTimer(time, TimerKind::once, [&] { over = true; });
    waitUntil([&] { return over; });
  }
};

}  // namespace quorin
