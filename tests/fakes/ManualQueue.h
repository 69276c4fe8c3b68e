// ManualQueue: a queue whose work the test runs by hand, on its own thread.
#pragma once

#include <deque>
#include <utility>

#include "kit/support/Queue.h"

namespace quorin {

class ManualQueue : public Queue {
 public:
  explicit ManualQueue(std::string name = "manual") : name_(std::move(name)) {}

  const std::string& name() const override { return name_; }
  void post(Work work) override { pending_.push_back(std::move(work)); }
  void sync(const Work& work) override {
    runAll();
    perform(work);
  }
  bool isCurrent() const override { return running_; }

  std::size_t waiting() const { return pending_.size(); }

  // Runs the oldest piece of work; false when there is none.
  bool runOne() {
    if (pending_.empty()) return false;
    const Work work = std::move(pending_.front());
    pending_.pop_front();
    perform(work);
    return true;
  }

  // Runs everything, including what the work posts.
  void runAll() {
    while (runOne()) {
    }
  }

 private:
  void perform(const Work& work) {
    running_ = true;
    work();
    running_ = false;
  }

  std::string name_;
  std::deque<Work> pending_;
  bool running_ = false;
};

}  // namespace quorin
