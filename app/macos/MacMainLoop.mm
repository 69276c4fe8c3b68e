#include "app/macos/MacMainLoop.h"

#import <Foundation/Foundation.h>
#include <utility>

#include "app/macos/Edge.h"

namespace quorin {
namespace {

// The run loop keeps the timer's block; the timer's owner keeps only the timer.
class MacTimer : public Timer {
 public:
  explicit MacTimer(NSTimer* timer) : timer_(timer) {}
  ~MacTimer() override { [timer_ invalidate]; }
  MacTimer(const MacTimer&) = delete;
  MacTimer& operator=(const MacTimer&) = delete;

 private:
  NSTimer* timer_;
};

}  // namespace

bool MacMainLoop::isMainThread() const {
  return NSThread.isMainThread;
}

void MacMainLoop::post(Action action) {
  const auto work = std::make_shared<Action>(std::move(action));
  dispatch_async(dispatch_get_main_queue(), ^{
    atEdge("main queue", *work);
  });
}

std::unique_ptr<Timer> MacMainLoop::startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                               Action action) {
  const auto work = std::make_shared<Action>(std::move(action));
  const NSTimeInterval seconds = std::chrono::duration<double>(interval).count();
  return std::make_unique<MacTimer>([NSTimer
      scheduledTimerWithTimeInterval:seconds
                             repeats:kind == TimerKind::repeating
                               block:^(NSTimer*) {
                                 const auto running = work;  // the action may destroy its timer
                                 atEdge("timer", *running);
                               }]);
}

}  // namespace quorin
