// Queue: work in order, one piece at a time. The port behind SerialQueue, so that tests can run
// the work by hand.
#pragma once

#include <functional>
#include <string>

namespace quorin {

class Queue {
 public:
  using Work = std::function<void()>;

  virtual ~Queue() = default;
  virtual const std::string& name() const = 0;

  // Runs the work after everything posted before and returns at once. Any thread. Work must not
  // throw: that stops the process.
  virtual void post(Work work) = 0;

  // Runs the work after everything posted before and returns when it has run; what it throws is
  // thrown here. Any thread but the queue's own, where it would never return: that stops the
  // process.
  virtual void sync(const Work& work) = 0;

  // True if the caller is work of this queue.
  virtual bool isCurrent() const = 0;

  // Returns when everything posted before has run. As sync.
  void flush() {
    sync([] {});
  }
};

}  // namespace quorin
