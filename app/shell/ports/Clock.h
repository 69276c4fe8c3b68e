// Clock: the time of day and the time that only runs forward. Any thread.
#pragma once

#include <chrono>

namespace quorin {

class Clock {
 public:
  virtual ~Clock() = default;
  virtual std::chrono::system_clock::time_point now() const = 0;
  virtual std::chrono::steady_clock::time_point steadyNow() const = 0;
};

// The standard library's clocks, on every system.
class SystemClock : public Clock {
 public:
  std::chrono::system_clock::time_point now() const override {
    return std::chrono::system_clock::now();
  }
  std::chrono::steady_clock::time_point steadyNow() const override {
    return std::chrono::steady_clock::now();
  }
};

}  // namespace quorin
