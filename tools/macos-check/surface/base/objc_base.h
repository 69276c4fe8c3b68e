#pragma once
#if !defined(__OBJC__)
#error "these declarations are for Objective-C++"
#endif
#include <stddef.h>
#include <stdint.h>
#include <stdarg.h>
#include <sys/types.h>
// The compiler says which of the two it is: bool on arm64, a character on x86_64.
#if __OBJC_BOOL_IS_BOOL
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#define Nil nullptr
typedef long NSInteger;
typedef unsigned long NSUInteger;
#define NSIntegerMax LONG_MAX
#define NSNotFound ((NSInteger)0x7fffffffffffffffL)
typedef unsigned short unichar;
typedef double NSTimeInterval;
typedef NSUInteger NSStringEncoding;
typedef double CGFloat;
struct CGPoint {
  CGFloat x, y;
};
struct CGSize {
  CGFloat width, height;
};
struct CGRect {
  CGPoint origin;
  CGSize size;
};
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef struct _NSRange {
  NSUInteger location, length;
} NSRange;
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
  return NSRect{{x, y}, {w, h}};
}
static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { return NSPoint{x, y}; }
static inline NSSize NSMakeSize(CGFloat w, CGFloat h) { return NSSize{w, h}; }
static inline NSRange NSMakeRange(NSUInteger l, NSUInteger n) { return NSRange{l, n}; }
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_ENUM(t, n) \
  enum n : t n;       \
  enum n : t
// Stricter than the SDK, where options are plain integers: one set's bits are not another's.
#define NS_OPTIONS(t, n)                                                             \
  enum n : t n;                                                                      \
  static inline constexpr n operator|(n a, n b) { return (n)((t)a | (t)b); }           \
  static inline constexpr n operator&(n a, n b) { return (n)((t)a & (t)b); }           \
  static inline constexpr n operator~(n a) { return (n)(~(t)a); }                      \
  static inline n& operator|=(n& a, n b) { return a = a | b; }                       \
  static inline n& operator&=(n& a, n b) { return a = a & b; }                       \
  enum n : t
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define NS_REQUIRES_SUPER __attribute__((objc_requires_super))
#undef API_AVAILABLE  // the shim's says nothing
#define __API_SINCE_macos(v) macos, introduced = v
#define API_AVAILABLE(x) __attribute__((availability(__API_SINCE_##x)))
extern "C" {
extern SEL NSSelectorFromString(id _Nonnull);
extern Class _Nullable NSClassFromString(id _Nonnull);
extern void NSLog(id _Nonnull, ...);
}
struct _NSZone;
typedef struct _NSZone NSZone;
NS_ASSUME_NONNULL_BEGIN
@class NSString, NSMethodSignature, NSInvocation, NSCoder, NSURL, NSDate, NSData, NSError, NSThread,
    NSPort, NSTimer, NSLocale;
@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
@property(readonly) NSUInteger hash;
@property(readonly) Class superclass;
- (Class)class;
- (instancetype)self;
- (id)performSelector:(SEL)aSelector;
- (id)performSelector:(SEL)aSelector withObject:(nullable id)object;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isMemberOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol*)aProtocol;
- (BOOL)respondsToSelector:(SEL)aSelector;
@property(readonly, copy) NSString* description;
@end
__attribute__((objc_root_class))
@interface NSObject<NSObject> {
  Class isa;
}
+ (void)initialize;
- (instancetype)init;
+ (instancetype)new;
+ (instancetype)alloc;
- (void)dealloc;
+ (Class)class;
- (id)copy;
- (id)mutableCopy;
+ (BOOL)instancesRespondToSelector:(SEL)aSelector;
+ (BOOL)conformsToProtocol:(Protocol*)protocol;
@end
@protocol NSCopying
- (id)copyWithZone:(nullable NSZone*)zone;
@end
@protocol NSMutableCopying
- (id)mutableCopyWithZone:(nullable NSZone*)zone;
@end
@protocol NSCoding
- (void)encodeWithCoder:(NSCoder*)coder;
- (nullable instancetype)initWithCoder:(NSCoder*)coder;
@end
@protocol NSSecureCoding <NSCoding>
@property(class, readonly) BOOL supportsSecureCoding;
@end
typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)len;
@end
NS_ASSUME_NONNULL_END
