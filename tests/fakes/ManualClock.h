// ManualClock: a steady clock that a test turns by hand. Safe to use from several threads.
#pragma once

#include <atomic>
#include <chrono>

namespace quorin::fakes {

class ManualClock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  TimePoint now() const { return TimePoint(std::chrono::milliseconds(milliseconds_.load())); }
  void advance(std::chrono::milliseconds time) { milliseconds_ += time.count(); }

 private:
  std::atomic<std::chrono::milliseconds::rep> milliseconds_{0};
};

}  // namespace quorin::fakes
