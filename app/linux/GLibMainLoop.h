// GLibMainLoop: the main loop port over GLib's default main context.
#pragma once

#include "app/shell/ports/MainLoop.h"

namespace quorin {

class GLibMainLoop : public MainLoop {
 public:
  bool isMainThread() const override;
  void post(Action action) override;
  std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                    Action action) override;
};

}  // namespace quorin
