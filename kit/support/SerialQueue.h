// SerialQueue: a named queue with a thread of its own, which starts with it. Owned by one object
// and destroyed on another thread than its own: destruction runs what has been posted, including
// what that work posts in turn, and joins the thread.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "kit/support/Queue.h"

namespace quorin {

class SerialQueue : public Queue {
 public:
  explicit SerialQueue(std::string name);
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  const std::string& name() const override { return name_; }
  void post(Work work) override;
  void sync(const Work& work) override;
  bool isCurrent() const override;

  // Stops the process unless called by this queue's work. `what` names the entry.
  void require(const char* what) const;

 private:
  void run();

  const std::string name_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Work> pending_;
  bool ending_ = false;
  std::thread thread_;  // last: it uses everything above
};

}  // namespace quorin
