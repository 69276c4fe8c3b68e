// The root of all classes. Compiled without ARC: it is where ARC's calls end.
#import <Foundation/Foundation.h>

#include "tests/macos/runtime/foundation/Raise.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

namespace {

objc::Object* of(id object) {
  return (objc::Object*)object;
}

objc::Class* kindOf(Class kind) {
  return (objc::Class*)kind;
}

}  // namespace

@implementation NSObject

+ (void)initialize {
}
+ (instancetype)alloc {
  return (id)objc_alloc(kindOf(self));
}
+ (instancetype)new {
  return [[self alloc] init];
}
+ (Class)class {
  return self;
}
+ (BOOL)instancesRespondToSelector:(SEL)selector {
  return objc::implementationOf(kindOf(self), (objc::Selector)selector) != nullptr;
}
- (instancetype)init {
  return self;
}
- (instancetype)self {
  return self;
}
- (void)dealloc {
  objc::destroy(of(self));
}
- (Class)class {
  return (Class)of(self)->isa;
}
- (Class)superclass {
  return (Class)of(self)->isa->super;
}
- (BOOL)isEqual:(id)other {
  return self == other;
}
- (NSUInteger)hash {
  return (NSUInteger)self;
}
- (BOOL)isKindOfClass:(Class)kind {
  return objc::isKind(of(self)->isa, kindOf(kind));
}
- (BOOL)isMemberOfClass:(Class)kind {
  return of(self)->isa == kindOf(kind);
}
- (BOOL)respondsToSelector:(SEL)selector {
  return objc::implementationOf(of(self)->isa, (objc::Selector)selector) != nullptr;
}
- (id)performSelector:(SEL)selector {
  return (id)objc::send<objc::Object*>(of(self), (objc::Selector)selector);
}
- (id)performSelector:(SEL)selector withObject:(id)object {
  return (id)objc::send<objc::Object*>(of(self), (objc::Selector)selector, of(object));
}
// "An exception is raised if there is no implementation for copyWithZone:" (NSObject, copy).
- (id)copy {
  if (![self respondsToSelector:@selector(copyWithZone:)])
    raise("NSInvalidArgumentException", "copyWithZone: is not there");
  return [(id<NSCopying>)self copyWithZone:nullptr];
}
- (NSString*)description {
  return @"an object";
}

@end

extern "C" {
Class NSClassFromString(id name) {
  return (Class)objc::classNamed([(NSString*)name UTF8String]);
}
SEL NSSelectorFromString(id name) {
  return (SEL)objc::selector([(NSString*)name UTF8String]);
}
}
