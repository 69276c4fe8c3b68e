#import "app/macos/ScriptThread.h"

namespace {

// AppleScript's compiler works recursively; a thread's usual half megabyte is little for it.
constexpr NSUInteger stackSize = 8u << 20;

}  // namespace

// One piece of work on its way to the thread and back.
@interface QXScriptTask : NSObject
@property(nonatomic, copy, nullable) NSString* source;
@property(nonatomic, strong, nullable) NSAppleEventDescriptor* event;
@property(nonatomic, strong, nullable) NSAppleEventDescriptor* reply;
@property(nonatomic, copy, nullable) NSDictionary<NSString*, id>* errorInfo;
@end

@implementation QXScriptTask
@end

// What the thread itself does.
@interface QXScriptThread (QXWork)
- (void)runTask:(QXScriptTask*)task;
- (void)compileTask:(QXScriptTask*)task;
- (void)executeTask:(QXScriptTask*)task;
- (void)endTask:(nullable id)nothing;
@end

@implementation QXScriptThread {
  NSThread* _thread;
  NSAppleScript* _script;  // made and used on the thread alone
}

- (instancetype)init {
  self = [super init];
  if (self) {
    _thread = [[NSThread alloc] initWithBlock:^{
      NSRunLoop* loop = NSRunLoop.currentRunLoop;
      // Without a source the loop would not wait for work.
      [loop addPort:[NSPort port] forMode:NSDefaultRunLoopMode];
      while (!NSThread.currentThread.cancelled) {
        @autoreleasepool {
          [loop runMode:NSDefaultRunLoopMode beforeDate:NSDate.distantFuture];
        }
      }
    }];
    _thread.name = @"qx.excel";
    _thread.stackSize = stackSize;
    [_thread start];
  }
  return self;
}

- (nullable NSDictionary<NSString*, id>*)compileSource:(NSString*)source {
  QXScriptTask* task = [[QXScriptTask alloc] init];
  task.source = source;
  [self performSelector:@selector(runTask:) onThread:_thread withObject:task waitUntilDone:YES];
  return task.errorInfo;
}

- (nullable NSAppleEventDescriptor*)performEvent:(NSAppleEventDescriptor*)event
                                       errorInfo:
                                           (NSDictionary<NSString*, id>* _Nullable* _Nonnull)info {
  QXScriptTask* task = [[QXScriptTask alloc] init];
  task.event = event;
  [self performSelector:@selector(runTask:) onThread:_thread withObject:task waitUntilDone:YES];
  *info = task.errorInfo;
  return task.reply;
}

// On the thread itself: between two turns of its loop it would otherwise see that it is to end, and
// leave the script to whoever lets go of this object.
- (void)stop {
  [self performSelector:@selector(endTask:) onThread:_thread withObject:nil waitUntilDone:NO];
}

// An exception here would end the program, far from the call that it belongs to.
- (void)runTask:(QXScriptTask*)task {
  @try {
    if (task.source) {
      [self compileTask:task];
    } else {
      [self executeTask:task];
    }
  } @catch (NSException* exception) {
    NSString* reason = exception.reason;
    task.errorInfo = @{NSAppleScriptErrorMessage : reason ? reason : exception.name};
  }
}

- (void)compileTask:(QXScriptTask*)task {
  NSString* source = task.source;
  if (!source) return;
  _script = [[NSAppleScript alloc] initWithSource:source];
  NSDictionary<NSString*, id>* errorInfo = nil;
  if (![_script compileAndReturnError:&errorInfo]) {
    task.errorInfo = errorInfo ? errorInfo : @{};
  }
}

- (void)executeTask:(QXScriptTask*)task {
  NSAppleEventDescriptor* event = task.event;
  if (!event) return;
  NSDictionary<NSString*, id>* errorInfo = nil;
  task.reply = [_script executeAppleEvent:event error:&errorInfo];
  task.errorInfo = errorInfo;
}

- (void)endTask:(nullable id)nothing {
  _script = nil;
  [_thread cancel];
}

@end
