#pragma once
#include "../base/MacTypes.h"
NS_ASSUME_NONNULL_BEGIN
@class NSMutableString;
extern "C" {
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef double CFTimeInterval;
typedef double CFAbsoluteTime;
typedef unsigned long CFHashCode;
typedef struct {
  CFIndex location, length;
} CFRange;
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __attribute__((objc_bridge(NSString))) __CFString* CFStringRef;
typedef struct __attribute__((objc_bridge_mutable(NSMutableString))) __CFString* CFMutableStringRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef CFStringRef CFRunLoopMode;
typedef SInt32 CFRunLoopRunResult;
typedef NS_ENUM(CFIndex, CFStringNormalizationForm) {
  kCFStringNormalizationFormD = 0,
  kCFStringNormalizationFormKD = 1,
  kCFStringNormalizationFormC = 2,
  kCFStringNormalizationFormKC = 3
};
typedef UInt32 CFStringEncoding;
static const CFStringEncoding kCFStringEncodingUTF8 = 134217984,
                              kCFStringEncodingUTF16LE = 335544576;
typedef NS_ENUM(CFIndex, CFComparisonResult) {
  kCFCompareLessThan = -1,
  kCFCompareEqualTo = 0,
  kCFCompareGreaterThan = 1
};
void CFStringNormalize(CFMutableStringRef theString, CFStringNormalizationForm theForm);
CFMutableStringRef _Nullable CFStringCreateMutableCopy(CFAllocatorRef _Nullable alloc,
                                                       CFIndex maxLength, CFStringRef theString);
CFStringRef _Nullable CFStringCreateWithBytes(CFAllocatorRef _Nullable alloc, const UInt8* bytes,
                                              CFIndex numBytes, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
CFStringRef _Nullable CFStringCreateWithCharacters(CFAllocatorRef _Nullable alloc,
                                                   const UniChar* chars, CFIndex numChars);
CFIndex CFStringGetLength(CFStringRef theString);
Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);
void CFStringGetCharacters(CFStringRef theString, CFRange range, UniChar* buffer);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
CFTypeID CFGetTypeID(CFTypeRef cf);
CFTypeID CFBooleanGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
CFRunLoopRef CFRunLoopGetCurrent(void);
CFRunLoopRef CFRunLoopGetMain(void);
void CFRunLoopRun(void);
void CFRunLoopStop(CFRunLoopRef rl);
void CFRunLoopWakeUp(CFRunLoopRef rl);
void CFRunLoopPerformBlock(CFRunLoopRef rl, CFTypeRef mode, void (^block)(void));
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled);
extern CFRunLoopMode const kCFRunLoopDefaultMode;
extern CFRunLoopMode const kCFRunLoopCommonModes;
extern CFAllocatorRef const kCFAllocatorDefault;
}
NS_ASSUME_NONNULL_END
