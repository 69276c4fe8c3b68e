// Numbers, and the booleans among them, which Core Foundation tells apart by their type.
#import <Foundation/Foundation.h>

#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

@implementation NSValue
@end

@implementation NSNull

+ (NSNull*)null {
  static NSNull* one = [] {
    NSNull* made = [[NSNull alloc] init];
    quorin::objc::exemptFromCensus((__bridge quorin::objc::Object*)made);
    return made;
  }();
  return one;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation NSNumber {
 @public
  double _value;
  bool _boolean;
}

static NSNumber* number(double value, bool boolean) {
  NSNumber* one = [[NSNumber alloc] init];
  one->_value = value;
  one->_boolean = boolean;
  return one;
}

+ (NSNumber*)numberWithBool:(BOOL)value {
  return number(value ? 1 : 0, true);
}
+ (NSNumber*)numberWithInt:(int)value {
  return number(value, false);
}
+ (NSNumber*)numberWithInteger:(NSInteger)value {
  return number(static_cast<double>(value), false);
}
+ (NSNumber*)numberWithDouble:(double)value {
  return number(value, false);
}
- (BOOL)boolValue {
  return _value != 0;
}
- (int)intValue {
  return static_cast<int>(_value);
}
- (double)doubleValue {
  return _value;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

extern "C" {
CFTypeID CFBooleanGetTypeID() {
  return 21;
}
CFTypeID CFNumberGetTypeID() {
  return 22;
}
CFTypeID CFGetTypeID(CFTypeRef object) {
  id one = (__bridge id)object;
  if (![one isKindOfClass:NSNumber.class]) return 1;
  return static_cast<NSNumber*>(one)->_boolean ? CFBooleanGetTypeID() : CFNumberGetTypeID();
}
}
