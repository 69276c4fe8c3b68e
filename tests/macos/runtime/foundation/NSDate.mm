// Dates, errors and the process.
#import <Foundation/Foundation.h>
#include <sys/time.h>
#include <unistd.h>

#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"

using namespace quorin;

NSErrorDomain const NSCocoaErrorDomain = @"NSCocoaErrorDomain";
NSErrorUserInfoKey const NSLocalizedDescriptionKey = @"NSLocalizedDescription";

namespace {

double now() {
  timeval time{};
  ::gettimeofday(&time, nullptr);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

@implementation NSDate {
  double _seconds;  // since 1970
}

+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds {
  NSDate* made = [[self alloc] init];
  made->_seconds = seconds;
  return made;
}
+ (instancetype)date {
  return [self dateWithTimeIntervalSince1970:now()];
}
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)seconds {
  return [self dateWithTimeIntervalSince1970:now() + seconds];
}
+ (NSDate*)distantFuture {
  return [self dateWithTimeIntervalSince1970:64092211200.0];
}
- (NSTimeInterval)timeIntervalSince1970 {
  return _seconds;
}
- (NSTimeInterval)timeIntervalSinceNow {
  return _seconds - now();
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation NSError

+ (instancetype)errorWithDomain:(NSErrorDomain)domain
                           code:(NSInteger)code
                       userInfo:(NSDictionary<NSErrorUserInfoKey, id>*)info {
  NSError* made = [[self alloc] init];
  made->_domain = domain;
  made->_code = code;
  made->_userInfo = info;
  return made;
}
- (NSString*)localizedDescription {
  NSString* text = _userInfo[NSLocalizedDescriptionKey];
  return text ? text : @"The operation couldn’t be completed.";
}
- (NSString*)description {
  return self.localizedDescription;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation NSProcessInfo

+ (NSProcessInfo*)processInfo {
  static NSProcessInfo* one = [] {
    NSProcessInfo* made = [[NSProcessInfo alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  return one;
}
- (int)processIdentifier {
  return ::getpid();
}
- (NSString*)operatingSystemVersionString {
  return @"Version 13.6.7 (Build 22G720)";
}

@end
