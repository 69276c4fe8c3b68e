// Threads and their run loops, and what is performed on them.
#import <Foundation/Foundation.h>
#include <thread>

#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

NSRunLoopMode const NSDefaultRunLoopMode = @"kCFRunLoopDefaultMode";
NSRunLoopMode const NSRunLoopCommonModes = @"kCFRunLoopCommonModes";

@interface NSThread () {
 @public
  std::shared_ptr<Loop> _loop;
  NSRunLoop* _runLoop;
  void (^_block)(void);
  std::atomic<bool> _cancelled, _started, _finished;
}
@end

@interface NSRunLoop () {
 @public
  std::shared_ptr<Loop> _loop;
}
@end

namespace {

thread_local __unsafe_unretained NSThread* current = nil;

void exempt(id object) {
  objc::exemptFromCensus((__bridge objc::Object*)object);
}

NSThread* mainThread() {
  static NSThread* one = [] {
    NSThread* made = [[NSThread alloc] init];
    made->_loop = Loop::main();
    exempt(made);
    return made;
  }();
  return one;
}

NSRunLoop* runLoopOf(NSThread* thread) {
  if (!thread->_runLoop) {
    thread->_runLoop = [[NSRunLoop alloc] init];
    thread->_runLoop->_loop = thread->_loop;
    if (thread == mainThread()) exempt(thread->_runLoop);
  }
  return thread->_runLoop;
}

// A thread that C++ started has an NSThread once it is asked for, for as long as the thread lives.
NSThread* adopted() {
  struct Kept {
    NSThread* thread = [[NSThread alloc] init];
    ~Kept() { current = nil; }
  };
  thread_local const Kept kept;
  kept.thread->_loop = Loop::current();
  return kept.thread;
}

}  // namespace

@implementation NSThread
@synthesize name = _name, stackSize = _stackSize;

+ (NSThread*)mainThread {
  return mainThread();
}
+ (NSThread*)currentThread {
  if (isMainThread()) return mainThread();
  if (!current) current = adopted();
  return current;
}
+ (BOOL)isMainThread {
  return isMainThread();
}
- (instancetype)initWithBlock:(void (^)(void))block {
  _block = block;
  _loop = std::make_shared<Loop>();
  return self;
}
// The thread keeps itself while it runs.
- (void)start {
  if (_started.exchange(true)) raise("NSInvalidArgumentException", "a thread is started twice");
  NSThread* running = self;
  std::thread([running]() mutable {
    running->_loop->belongTo(std::this_thread::get_id());
    current = running;
    @autoreleasepool {
      running->_block();
    }
    running->_loop->end();
    running->_finished = true;
    running->_block = nil;
    running->_runLoop = nil;
    current = nil;
    running = nil;
  }).detach();
}
- (void)cancel {
  _cancelled = true;
}
- (BOOL)isCancelled {
  return _cancelled;
}
- (BOOL)isFinished {
  return _finished;
}

@end

@implementation NSRunLoop

+ (NSRunLoop*)currentRunLoop {
  return runLoopOf(NSThread.currentThread);
}
+ (NSRunLoop*)mainRunLoop {
  return runLoopOf(mainThread());
}
- (NSRunLoopMode)currentMode {
  const std::string mode = _loop->mode();
  return mode.empty() ? nil : made(mode);
}
- (void)addPort:(NSPort*)port forMode:(NSRunLoopMode)mode {
  _loop->addPort(read(mode));
}
// "YES if the run loop ran and processed an input source or if the specified timeout value was
// reached; otherwise, NO if the run loop could not be started."
- (BOOL)runMode:(NSRunLoopMode)mode beforeDate:(NSDate*)date {
  const auto until = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(std::min(date.timeIntervalSinceNow, 1e8)));
  const bool ran = _loop->run(read(mode), until, nullptr) != Loop::Ran::nothing;
  thread_local int inVain = 0;
  inVain = ran ? 0 : inVain + 1;
  if (inVain > 200) objc::breach("a run loop turns without anything to wait for");
  return ran;
}
- (void)performBlock:(void (^)(void))block {
  _loop->perform({Loop::defaultMode}, [block] { block(); });
}

@end

@implementation NSPort

+ (NSPort*)port {
  return [[NSPort alloc] init];
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation NSObject (SurfaceRunLoopAdditions)

- (void)performSelector:(SEL)selector
               onThread:(NSThread*)thread
             withObject:(id)object
          waitUntilDone:(BOOL)wait {
  struct Answer {
    std::mutex lock;
    std::condition_variable done;
    bool isDone = false;
  };
  const auto answer = std::make_shared<Answer>();
  NSObject* receiver = self;
  const bool taken = thread->_loop->perform({Loop::commonModes}, [=] {
    (void)objc::send<objc::Object*>((__bridge objc::Object*)receiver, (objc::Selector)selector,
                                    (__bridge objc::Object*)object);
    const std::lock_guard guard(answer->lock);
    answer->isDone = true;
    answer->done.notify_all();
  });
  if (!wait) return;
  // Foundation raises it for a thread that has exited while somebody waits for it.
  if (!taken) raise("NSDestinationInvalidException", "target thread exited");
  std::unique_lock guard(answer->lock);
  answer->done.wait(guard, [&] { return answer->isDone; });
}

- (void)performSelector:(SEL)selector
             withObject:(id)object
             afterDelay:(NSTimeInterval)delay
                inModes:(NSArray<NSRunLoopMode>*)modes {
  NSObject* receiver = self;
  const auto timer = std::make_shared<Loop::Timer>();
  timer->next = std::chrono::steady_clock::now() +
                std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                    std::chrono::duration<double>(delay));
  timer->fire = [=] {
    (void)objc::send<objc::Object*>((__bridge objc::Object*)receiver, (objc::Selector)selector,
                                    (__bridge objc::Object*)object);
  };
  for (NSString* mode in modes) NSThread.currentThread->_loop->add(timer, read(mode));
}

@end
