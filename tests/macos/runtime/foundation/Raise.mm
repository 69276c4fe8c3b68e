#include "tests/macos/runtime/foundation/Raise.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <unistd.h>

#import "tests/macos/runtime/foundation/Strings.h"

using namespace quorin;

@implementation NSException {
 @public
  NSString* _theName;
  NSString* _theReason;
}

- (NSExceptionName)name {
  return _theName;
}
- (NSString*)reason {
  return _theReason;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

namespace {

struct Told {
  std::mutex lock;
  int raised = 0;
  std::vector<std::string> logged;
};

Told& told() {
  static Told& all = *new Told;
  return all;
}

// Of the conversions those that the adapters use.
std::string formatted(const std::string& format, va_list arguments) {
  std::string text;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      text += format[i];
      continue;
    }
    switch (format[++i]) {
      case '@': {
        id object = (__bridge id)va_arg(arguments, void*);
        text += object ? read([object description]) : "(null)";
        break;
      }
      case 's': {
        const char* bytes = va_arg(arguments, const char*);
        text += bytes ? bytes : "(null)";
        break;
      }
      case 'd':
        text += std::to_string(va_arg(arguments, int));
        break;
      default:
        text += format[i];
    }
  }
  return text;
}

}  // namespace

extern "C" void NSLog(id format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string line = formatted(read(format), arguments);
  va_end(arguments);
  std::fprintf(stderr, "%s\n", line.c_str());
  const std::lock_guard guard(told().lock);
  told().logged.push_back(line);
}

namespace quorin {

void raise(const char* name, const std::string& reason) {
  {
    const std::lock_guard guard(told().lock);
    ++told().raised;
  }
  NSException* exception = [[NSException alloc] init];
  exception->_theName = made(name);
  exception->_theReason = made(reason);
  @throw exception;
}

bool isMainThread() {
  return ::getpid() == ::gettid();
}

void onMainThread(const char* what) {
  if (!isMainThread())
    raise("NSInternalInconsistencyException", std::string(what) + " off the main thread");
}

int raisedSoFar() {
  const std::lock_guard guard(told().lock);
  return told().raised;
}

std::vector<std::string> loggedSoFar() {
  const std::lock_guard guard(told().lock);
  return told().logged;
}

}  // namespace quorin
