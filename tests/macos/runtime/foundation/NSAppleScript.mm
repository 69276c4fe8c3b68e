// AppleScript: the project's own engine, with a spreadsheet in memory as Excel. Apple documents the
// class for the main thread; what the program relies on is that all of a script's life is on one
// thread (docs/macos.md: whether two hundred calls off the main thread went well), so that is what
// is demanded here.
#import <Foundation/Foundation.h>
#include <memory>
#include <thread>

#include "host/EngineRunner.h"
#import "tests/macos/runtime/foundation/Descriptor.h"
#include "tests/macos/runtime/foundation/Excel.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

NSString* const NSAppleScriptErrorNumber = @"NSAppleScriptErrorNumber";
NSString* const NSAppleScriptErrorMessage = @"NSAppleScriptErrorMessage";

namespace {

NSDictionary<NSString*, id>* described(const ScriptErrorInfo& error) {
  NSMutableDictionary<NSString*, id>* info = [[NSMutableDictionary alloc] init];
  if (error.number) info[NSAppleScriptErrorNumber] = [NSNumber numberWithInt:*error.number];
  if (error.message) info[NSAppleScriptErrorMessage] = made(*error.message);
  return info;
}

}  // namespace

@implementation NSAppleScript {
  std::string _text;
  std::unique_ptr<host::EngineRunner> _runner;
  std::thread::id _thread;
}

- (instancetype)initWithSource:(NSString*)source {
  _text = read(source);
  _thread = std::this_thread::get_id();
  return self;
}
- (void)dealloc {
  [self checkThread];
}
- (void)checkThread {
  if (std::this_thread::get_id() != _thread) objc::breach("a script is used on another thread");
}
- (BOOL)compileAndReturnError:(NSDictionary<NSString*, id>**)errorInfo {
  [self checkThread];
  _runner = std::make_unique<host::EngineRunner>(makeExcel());
  const auto error = _runner->compile(_text);
  if (error && errorInfo) *errorInfo = described(*error);
  return !error;
}
- (NSAppleEventDescriptor*)executeAppleEvent:(NSAppleEventDescriptor*)event
                                       error:(NSDictionary<NSString*, id>**)errorInfo {
  [self checkThread];
  if (!_runner && ![self compileAndReturnError:errorInfo]) return nil;  // "compiles if necessary"
  const ScriptReply reply = _runner->execute(plainEvent(event));
  if (reply.error) {
    if (errorInfo) *errorInfo = described(*reply.error);
    return nil;
  }
  // A handler without a value answers with the null descriptor.
  return wrapped(reply.result.value_or(AppleEventDescriptor::null()));
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end
