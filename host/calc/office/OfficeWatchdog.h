// OfficeWatchdog: the thread that ends a call into an office that can no longer answer. UNO knows
// no time-out: a call returns when the office answers or when the line to it is dead, so this
// thread hangs up when the office's process is gone, when a deadline set for connecting passes, or
// when the program is quitting. An office that is merely slow or stopped is left alone.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <sys/types.h>
#include <thread>

namespace quorin::host::calc {

class OfficeWatchdog {
 public:
  // `release` runs on the watchdog's thread, once, and frees whoever waits for the office.
  OfficeWatchdog(pid_t office, std::function<void()> release);
  ~OfficeWatchdog();
  OfficeWatchdog(const OfficeWatchdog&) = delete;
  OfficeWatchdog& operator=(const OfficeWatchdog&) = delete;

  void setDeadline(std::optional<std::chrono::steady_clock::time_point> deadline);
  bool deadlinePassed() const;
  bool hasFired() const;  // for any reason: `release` runs, or has run
  void interrupt();       // from any thread

 private:
  using Clock = std::chrono::steady_clock;
  void run();
  void wake() const;
  int millisecondsLeft() const;

  const std::function<void()> release_;
  int process_ = -1;  // a pidfd; -1 when the process was gone already
  int signal_ = -1;   // an eventfd
  mutable std::mutex mutex_;
  std::optional<Clock::time_point> deadline_;
  bool stopping_ = false, interrupted_ = false, deadlinePassed_ = false, fired_ = false;
  std::thread thread_;
};

}  // namespace quorin::host::calc
