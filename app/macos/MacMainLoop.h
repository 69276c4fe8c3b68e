// MacMainLoop: the main queue and the main run loop's timers.
#pragma once

#include "app/shell/ports/MainLoop.h"

namespace quorin {

class MacMainLoop : public MainLoop {
 public:
  bool isMainThread() const override;
  void post(Action action) override;
  std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                    Action action) override;
};

}  // namespace quorin
