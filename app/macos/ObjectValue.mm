#import "app/macos/ObjectValue.h"

#import "app/macos/Text.h"

namespace quorin {
namespace {

// Booleans are numbers too; only their type says that they were made from one.
bool isBoolean(NSNumber* number) {
  return CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID();
}

bool hasTextKeysAlone(NSDictionary* dictionary) {
  for (id key in dictionary) {
    if (![key isKindOfClass:NSString.class]) return false;
  }
  return true;
}

}  // namespace

AnyValue::Kind ObjectValue::kind() const {
  id object = object_;
  if (!object) return Kind::absent;
  if ([object isKindOfClass:NSNull.class]) return Kind::null;
  if ([object isKindOfClass:NSNumber.class]) {
    return isBoolean(static_cast<NSNumber*>(object)) ? Kind::boolean : Kind::number;
  }
  if ([object isKindOfClass:NSString.class]) return Kind::text;
  if ([object isKindOfClass:NSArray.class]) return Kind::list;
  if ([object isKindOfClass:NSDictionary.class] &&
      hasTextKeysAlone(static_cast<NSDictionary*>(object))) {
    return Kind::dictionary;
  }
  return Kind::other;
}

bool ObjectValue::boolean() const {
  return static_cast<NSNumber*>(object_).boolValue;
}

double ObjectValue::number() const {
  return static_cast<NSNumber*>(object_).doubleValue;
}

std::string ObjectValue::text() const {
  return fromNSString(static_cast<NSString*>(object_));
}

void ObjectValue::forEachItem(const ItemVisitor& visit) const {
  for (id item in static_cast<NSArray*>(object_)) visit(ObjectValue(item));
}

void ObjectValue::forEachMember(const MemberVisitor& visit) const {
  NSDictionary<NSString*, id>* members = object_;
  for (NSString* key in members) visit(fromNSString(key), ObjectValue(members[key]));
}

}  // namespace quorin
