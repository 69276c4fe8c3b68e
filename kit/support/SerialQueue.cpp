#include "kit/support/SerialQueue.h"

#include <exception>
#include <future>
#include <memory>
#include <utility>

#include "kit/platform/Fatal.h"
#include "kit/platform/Thread.h"

namespace quorin {
namespace {

thread_local const SerialQueue* current = nullptr;

}  // namespace

SerialQueue::SerialQueue(std::string name) : name_(std::move(name)), thread_([this] { run(); }) {}

SerialQueue::~SerialQueue() {
  if (isCurrent()) fatal("the queue \"" + name_ + "\" was destroyed by its own work");
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void SerialQueue::post(Work work) {
  {
    const std::lock_guard lock(mutex_);
    pending_.push_back(std::move(work));
  }
  changed_.notify_one();
}

void SerialQueue::sync(const Work& work) {
  if (isCurrent()) {
    fatal("waiting for the queue \"" + name_ + "\" on its own thread " + currentThreadName() +
          " would never end");
  }
  // Shared, for the queue's thread may still be inside it when the result is already here.
  const auto task = std::make_shared<std::packaged_task<void()>>(work);
  auto done = task->get_future();
  post([task] { (*task)(); });
  done.get();
}

bool SerialQueue::isCurrent() const {
  return current == this;
}

void SerialQueue::require(const char* what) const {
  if (!isCurrent()) stopForWrongThread(what, name_);
}

void SerialQueue::run() {
  current = this;
  nameCurrentThread(name_);
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !pending_.empty(); });
    if (pending_.empty()) return;
    Work work = std::move(pending_.front());
    pending_.pop_front();
    lock.unlock();
    try {
      work();
      work = nullptr;  // what it holds goes before the next piece, outside the lock
    } catch (const std::exception& error) {
      fatal("work of the queue \"" + name_ + "\" threw: " + error.what());
    } catch (...) {
      fatal("work of the queue \"" + name_ + "\" threw something unknown");
    }
    lock.lock();
  }
}

}  // namespace quorin
