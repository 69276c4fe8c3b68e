// MainLoop: work for the main thread, now or later. It lives as long as the platform.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quorin {

// A running timer. Destroying it stops it, also from inside its own action. Main thread only.
class Timer {
 public:
  virtual ~Timer() = default;
};

enum class TimerKind { once, repeating };

class MainLoop {
 public:
  using Action = std::function<void()>;

  virtual ~MainLoop() = default;

  // Any thread. True on the thread that runs the event loop.
  virtual bool isMainThread() const = 0;

  // Any thread. Runs the action on the main thread, never inside this call, in the order in which
  // actions were posted.
  virtual void post(Action action) = 0;

  // Main thread. The first firing comes after one interval. A repeating timer that is late skips
  // what it missed.
  virtual std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                            Action action) = 0;
};

}  // namespace quorin
