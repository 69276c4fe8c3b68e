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

}  // namespace quorin
