// Timers of a run loop, which keeps them and their blocks until they are invalid.
#import <Foundation/Foundation.h>
#include <utility>

#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

@interface NSRunLoop () {
 @public
  std::shared_ptr<Loop> _loop;
}
@end

@implementation NSTimer {
  std::shared_ptr<Loop::Timer> _timer;
  std::shared_ptr<Loop> _at;  // while it is valid and in one
}
@synthesize tolerance = _tolerance;

+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                          repeats:(BOOL)repeats
                            block:(void (^)(NSTimer*))block {
  NSTimer* made = [[NSTimer alloc] init];
  made->_timer = std::make_shared<Loop::Timer>();
  // "If it is less than or equal to 0.0, this method chooses the nonnegative value of 0.0001".
  made->_timer->interval = std::chrono::duration<double>(std::max(interval, 0.0001));
  made->_timer->next = std::chrono::steady_clock::now() +
                       std::chrono::duration_cast<Loop::Time::duration>(made->_timer->interval);
  made->_timer->repeats = repeats;
  made->_timer->fire = [made, block] {
    NSTimer* running = made;  // the block may invalidate it
    // "Invalidating releases the block": who runs in it must not need it any more.
    void (^__unsafe_unretained work)(NSTimer*) = block;
    work(running);
    if (!running->_timer->repeats) [running end];
  };
  return made;
}
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)interval
                                   repeats:(BOOL)repeats
                                     block:(void (^)(NSTimer*))block {
  NSTimer* made = [self timerWithTimeInterval:interval repeats:repeats block:block];
  [NSRunLoop.currentRunLoop addTimer:made forMode:NSDefaultRunLoopMode];
  return made;
}
- (void)addTo:(const std::shared_ptr<Loop>&)loop mode:(const std::string&)mode {
  _at = loop;
  loop->add(_timer, mode);
}
// "You must send this message from the thread on which the timer was installed."
- (void)invalidate {
  if (_at && !_at->isOwn()) objc::breach("a timer is invalidated on another thread");
  [self end];
}
- (void)end {
  const auto at = std::exchange(_at, nullptr);
  if (at) at->remove(_timer);
  const Loop::Work dropped = std::exchange(_timer->fire, [] {});
}
- (BOOL)isValid {
  return _at != nullptr;
}

@end

@interface NSTimer (QXLoop)
- (void)addTo:(const std::shared_ptr<Loop>&)loop mode:(const std::string&)mode;
@end

@implementation NSRunLoop (QXTimers)

- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode {
  [timer addTo:_loop mode:read(mode)];
}

@end
