// Semaphore: a counting semaphore for one wait with a deadline, and the clock such waits go by.
// Any thread may signal and wait.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quorin {

class Semaphore {
 public:
  void signal() {
    // Notified under the lock: the waiter may destroy the semaphore as soon as it has been woken.
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_one();
  }

  void wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return count_ > 0; });
    --count_;
  }

  // True when it was signalled in time.
  bool waitUntil(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_until(lock, deadline, [this] { return count_ > 0; })) return false;
    --count_;
    return true;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

// What the Excel call thread knows of time. The default goes by the steady clock; tests put their
// own in its place and so decide how long a wait took.
class CallClock {
 public:
  using Duration = std::chrono::nanoseconds;

  virtual ~CallClock() = default;
  virtual Duration now() { return std::chrono::steady_clock::now().time_since_epoch(); }
  virtual bool wait(Semaphore& semaphore, Duration atMost) {
    return semaphore.waitUntil(std::chrono::steady_clock::now() + atMost);
  }
};

}  // namespace quorin
