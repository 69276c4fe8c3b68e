// Loop: what a run loop waits for and does, for the fakes of NSRunLoop, NSThread, NSTimer, the main
// queue and NSApplication. Any thread gives it work; its own thread alone runs it.
//
// What it models is in Apple's Threading Programming Guide ("Run Loops"): work belongs to modes; a
// mode without anything to wait for ends at once; timers fire between sources and do not end a run.
// The main queue is served in the common modes, and not inside one of its own blocks: it is serial
// (dispatch_get_main_queue), so a loop run inside such a block leaves the next one waiting.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quorin {

class Loop {
 public:
  using Work = std::function<void()>;
  using Modes = std::vector<std::string>;
  using Time = std::chrono::steady_clock::time_point;

  struct Timer {
    Modes modes;
    Time next;
    std::chrono::duration<double> interval{};
    bool repeats = false;
    Work fire;
  };

  static constexpr const char* defaultMode = "kCFRunLoopDefaultMode";
  static constexpr const char* commonModes = "kCFRunLoopCommonModes";
  static constexpr const char* modalMode = "NSModalPanelRunLoopMode";
  static constexpr const char* trackingMode = "NSEventTrackingRunLoopMode";

  static const std::shared_ptr<Loop>& main();
  // This thread's; made when it is first asked for. The main thread's is main().
  static const std::shared_ptr<Loop>& current();

  Loop() : owner_(std::this_thread::get_id()) {}

  void belongTo(std::thread::id thread) { owner_ = thread; }
  bool isOwn() const { return owner_ == std::this_thread::get_id(); }

  // False when the loop's thread has ended.
  bool perform(Modes modes, Work work);
  void performOnMainQueue(Work work);
  void add(const std::shared_ptr<Timer>& timer, const std::string& mode);
  void remove(const std::shared_ptr<Timer>& timer);
  void addPort(const std::string& mode);
  void wake();

  // Its thread has ended: what still waits is dropped.
  void end();

  enum class Ran { source, stopped, timedOut, nothing };

  // Runs timers until a source has been served, `stop` holds, or the time has come. The main loop
  // always has something to wait for: events.
  Ran run(const std::string& mode, Time until, const std::function<bool()>& stop);

  std::string mode() const { return mode_; }

 private:
  struct Performed {
    Modes modes;
    Work work;
  };

  Work nextSource(const std::string& mode);  // with the lock held; none when nothing waits
  std::shared_ptr<Timer> nextTimer(const std::string& mode) const;
  bool canWait(const std::string& mode) const;
  void runMainQueueBlock(const Work& work);

  std::mutex lock_;
  std::condition_variable changed_;
  std::thread::id owner_;
  std::deque<Performed> performed_;
  std::deque<Work> mainQueue_;
  bool inMainQueue_ = false;  // one of the main queue's blocks is running
  bool woken_ = false;
  bool ended_ = false;
  std::list<std::shared_ptr<Timer>> timers_;
  Modes ports_;
  std::string mode_;  // in which it runs; empty: it does not
};

}  // namespace quorin
