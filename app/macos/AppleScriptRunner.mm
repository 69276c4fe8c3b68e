#import "app/macos/AppleScriptRunner.h"

#import <AppKit/AppKit.h>

#import "app/macos/Descriptors.h"
#import "app/macos/ScriptThread.h"
#import "app/macos/Text.h"

namespace quorin {
namespace {

constexpr int applicationNotFound = -10814;

ScriptErrorInfo described(NSDictionary<NSString*, id>* info) {
  ScriptErrorInfo error;
  id number = info[NSAppleScriptErrorNumber];
  id message = info[NSAppleScriptErrorMessage];
  if ([number isKindOfClass:NSNumber.class]) error.number = static_cast<NSNumber*>(number).intValue;
  if ([message isKindOfClass:NSString.class]) {
    error.message = fromNSString(static_cast<NSString*>(message));
  }
  return error;
}

bool excelIsInstalled() {
  return [NSWorkspace.sharedWorkspace
             URLForApplicationWithBundleIdentifier:@"com.microsoft.Excel"] != nil;
}

}  // namespace

AppleScriptRunner::AppleScriptRunner() : thread_([[QXScriptThread alloc] init]) {}

AppleScriptRunner::~AppleScriptRunner() {
  [thread_ stop];
}

std::optional<ScriptErrorInfo> AppleScriptRunner::compile(std::string_view source) {
  @autoreleasepool {
    // Without the application the system would ask the user where it is.
    if (!excelIsInstalled())
      return ScriptErrorInfo{applicationNotFound, "Microsoft Excel is not installed"};
    NSDictionary<NSString*, id>* info = [thread_ compileSource:toNSString(source)];
    if (!info) return std::nullopt;
    return described(info);
  }
}

ScriptReply AppleScriptRunner::execute(const AppleEvent& event) {
  @autoreleasepool {
    NSDictionary<NSString*, id>* info = nil;
    NSAppleEventDescriptor* result = [thread_ performEvent:toScriptEvent(event) errorInfo:&info];
    ScriptReply reply;
    if (info) reply.error = described(info);
    if (result) reply.result = fromEventDescriptor(result);
    return reply;
  }
}

}  // namespace quorin
