// ScriptedClock: a CallClock whose waits go as the test says. There are two plans: one for the
// waits inside the gate (for a late call, for an answer), one for the waits of everybody else (for
// the compile, for a turn, for the end of the thread). Each wait takes the next step of its plan:
// it is signalled after a stated time, or its time runs out. A wait beyond the plan takes no time
// on this clock, and in the real world as long as it takes until it is signalled.
// Safe to use from several threads.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "kit/excel/Semaphore.h"
#include "kit/platform/Thread.h"

namespace quorin::fakes {

class ScriptedClock : public CallClock {
 public:
  using Action = std::function<void()>;

  // The next wait inside the gate ends by a signal after `after`. `first` runs when the wait
  // begins: it is where a test lets the other side go on.
  void signalled(
      Duration after, Action first = [] {}) {
    const std::lock_guard lock(mutex_);
    inGate_.push_back({after, true, std::move(first)});
  }

  // The next wait inside the gate lasts as long as it may and is not signalled.
  void timesOut(Action first = [] {}) {
    const std::lock_guard lock(mutex_);
    inGate_.push_back({Duration::zero(), false, std::move(first)});
  }

  // The same for the next wait outside the gate.
  void timesOutOutside(Action first = [] {}) {
    const std::lock_guard lock(mutex_);
    outside_.push_back({Duration::zero(), false, std::move(first)});
  }

  void signalledOutside(
      Duration after, Action first = [] {}) {
    const std::lock_guard lock(mutex_);
    outside_.push_back({after, true, std::move(first)});
  }

  // From now on every look at the clock finds it this much later.
  void tick(Duration time) {
    const std::lock_guard lock(mutex_);
    tick_ = time;
  }

  // How long each wait was allowed to take, in order: inside the gate, and outside.
  std::vector<Duration> waits() const {
    const std::lock_guard lock(mutex_);
    return gateWaits_;
  }
  std::vector<Duration> waitsOutside() const {
    const std::lock_guard lock(mutex_);
    return outsideWaits_;
  }

  Duration now() override {
    const std::lock_guard lock(mutex_);
    return now_ += tick_;
  }

  bool wait(Semaphore& semaphore, Duration atMost) override {
    const bool gate = currentThreadName() == "\"com.quorin.app.excel.gate\"";
    Step step;
    {
      const std::lock_guard lock(mutex_);
      (gate ? gateWaits_ : outsideWaits_).push_back(atMost);
      std::deque<Step>& plan = gate ? inGate_ : outside_;
      if (!plan.empty()) {
        step = std::move(plan.front());
        plan.pop_front();
      }
    }
    if (step.first) step.first();
    if (step.signalled) semaphore.wait();
    const std::lock_guard lock(mutex_);
    now_ += step.signalled ? step.after : atMost;
    return step.signalled;
  }

 private:
  struct Step {
    Duration after = Duration::zero();
    bool signalled = true;
    Action first;
  };

  mutable std::mutex mutex_;
  std::deque<Step> inGate_;
  std::deque<Step> outside_;
  std::vector<Duration> gateWaits_;
  std::vector<Duration> outsideWaits_;
  Duration now_ = std::chrono::hours(1);
  Duration tick_ = Duration::zero();
};

}  // namespace quorin::fakes
