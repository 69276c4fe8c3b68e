#include "tests/macos/runtime/foundation/Loop.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

#include "tests/macos/runtime/objc/Runtime.h"

extern "C" {
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* pool);
}

namespace quorin {
namespace {

bool isCommon(const std::string& mode) {
  return mode == Loop::defaultMode || mode == Loop::modalMode || mode == Loop::trackingMode;
}

bool contains(const Loop::Modes& modes, const std::string& mode) {
  return std::any_of(modes.begin(), modes.end(), [&](const std::string& each) {
    return each == mode || (each == Loop::commonModes && isCommon(mode));
  });
}

// AppKit makes one for each event, and Foundation for what a thread performs.
class Pool {
 public:
  Pool() : pool_(objc_autoreleasePoolPush()) {}
  ~Pool() { objc_autoreleasePoolPop(pool_); }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

 private:
  void* const pool_;
};

}  // namespace

const std::shared_ptr<Loop>& Loop::main() {
  static const auto& loop = *new std::shared_ptr<Loop>([] {
    if (::getpid() != ::gettid()) objc::breach("the main loop is first asked for elsewhere");
    return std::make_shared<Loop>();
  }());
  return loop;
}

const std::shared_ptr<Loop>& Loop::current() {
  if (::getpid() == ::gettid()) return main();
  thread_local const auto loop = std::make_shared<Loop>();
  return loop;
}

bool Loop::perform(Modes modes, Work work) {
  const std::lock_guard guard(lock_);
  if (ended_) return false;
  performed_.push_back({std::move(modes), std::move(work)});
  changed_.notify_all();
  return true;
}

void Loop::performOnMainQueue(Work work) {
  const std::lock_guard guard(lock_);
  mainQueue_.push_back(std::move(work));
  changed_.notify_all();
}

void Loop::add(const std::shared_ptr<Timer>& timer, const std::string& mode) {
  const std::lock_guard guard(lock_);
  timer->modes.push_back(mode);
  if (std::find(timers_.begin(), timers_.end(), timer) == timers_.end()) timers_.push_back(timer);
  changed_.notify_all();
}

void Loop::remove(const std::shared_ptr<Timer>& timer) {
  const std::lock_guard guard(lock_);
  timers_.remove(timer);
}

void Loop::addPort(const std::string& mode) {
  const std::lock_guard guard(lock_);
  ports_.push_back(mode);
}

void Loop::wake() {
  const std::lock_guard guard(lock_);
  woken_ = true;
  changed_.notify_all();
}

void Loop::end() {
  std::deque<Performed> dropped;
  const std::lock_guard guard(lock_);
  ended_ = true;
  dropped.swap(performed_);
}

Loop::Work Loop::nextSource(const std::string& mode) {
  const auto found = std::find_if(performed_.begin(), performed_.end(), [&](const Performed& each) {
    return contains(each.modes, mode);
  });
  if (found != performed_.end()) {
    Work work = std::move(found->work);
    performed_.erase(found);
    return work;
  }
  if (mainQueue_.empty() || inMainQueue_ || !isCommon(mode)) return nullptr;
  Work block = std::move(mainQueue_.front());
  mainQueue_.pop_front();
  return [this, block = std::move(block)] { runMainQueueBlock(block); };
}

void Loop::runMainQueueBlock(const Work& work) {
  struct Running {
    bool& flag;
    ~Running() { flag = false; }
  };
  const Running running{inMainQueue_ = true};
  work();
}

std::shared_ptr<Loop::Timer> Loop::nextTimer(const std::string& mode) const {
  std::shared_ptr<Timer> first;
  for (const auto& each : timers_) {
    if (contains(each->modes, mode) && (!first || each->next < first->next)) first = each;
  }
  return first;
}

bool Loop::canWait(const std::string& mode) const {
  return this == main().get() || contains(ports_, mode) || nextTimer(mode);
}

Loop::Ran Loop::run(const std::string& mode, Time until, const std::function<bool()>& stop) {
  if (!isOwn()) objc::breach("a run loop is run on another thread");
  struct InMode {
    std::string& at;
    std::string before;
    ~InMode() { at = before; }
  };
  const InMode running{mode_, std::exchange(mode_, mode)};
  std::unique_lock guard(lock_);
  while (true) {
    if (stop && (guard.unlock(), stop())) return Ran::stopped;
    if (!guard.owns_lock()) guard.lock();
    const Time now = std::chrono::steady_clock::now();
    const std::shared_ptr<Timer> timer = nextTimer(mode);
    if (timer && timer->next <= now) {
      // "The timer is fired only once for the passed time period" (NSTimer).
      if (timer->repeats) {
        const auto step = std::chrono::duration_cast<Time::duration>(timer->interval);
        while (timer->next <= now) timer->next += step;
      } else {
        timers_.remove(timer);
      }
      guard.unlock();
      const Pool pool;
      timer->fire();
      guard.lock();
      continue;
    }
    if (const Work work = nextSource(mode)) {
      guard.unlock();
      const Pool pool;
      work();
      return Ran::source;
    }
    if (!canWait(mode)) return Ran::nothing;
    if (now >= until) return Ran::timedOut;
    if (std::exchange(woken_, false)) continue;
    const Time next = timer ? std::min(until, timer->next) : until;
    changed_.wait_until(guard, std::min(next, now + std::chrono::hours(1)));
  }
}

}  // namespace quorin
