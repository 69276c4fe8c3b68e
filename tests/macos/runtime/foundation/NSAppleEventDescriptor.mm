// Apple events' descriptors, over the portable ones. Positions are 1-based, and position 0 or one
// past the end appends ("insertDescriptor:atIndex:"); an item that is not there is nothing.
#include <utility>

#import "tests/macos/runtime/foundation/Descriptor.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"

using namespace quorin;

@implementation NSAppleEventDescriptor {
 @public
  DescType _type;
  AppleEventDescriptor _value;
  std::vector<std::pair<AEKeyword, NSAppleEventDescriptor*>> _items;  // a list's have no keyword
  std::vector<std::pair<AEKeyword, NSAppleEventDescriptor*>> _attributes;
  AEEventClass _eventClass;
  AEEventID _eventID;
}

static NSAppleEventDescriptor* holding(AppleEventDescriptor value) {
  NSAppleEventDescriptor* one = [[NSAppleEventDescriptor alloc] init];
  one->_type = value.type();
  one->_value = std::move(value);
  return one;
}

static NSAppleEventDescriptor* empty(DescType type) {
  NSAppleEventDescriptor* one = [[NSAppleEventDescriptor alloc] init];
  one->_type = type;
  return one;
}

+ (NSAppleEventDescriptor*)nullDescriptor {
  return empty(typeNull);
}
+ (NSAppleEventDescriptor*)descriptorWithBoolean:(Boolean)value {
  return holding(AppleEventDescriptor::boolean(value));
}
+ (NSAppleEventDescriptor*)descriptorWithInt32:(SInt32)value {
  return holding(AppleEventDescriptor::integer(value));
}
+ (NSAppleEventDescriptor*)descriptorWithDouble:(double)value {
  return holding(AppleEventDescriptor::real(value));
}
+ (NSAppleEventDescriptor*)descriptorWithString:(NSString*)value {
  if (!value) raise("NSInvalidArgumentException", "descriptorWithString: of nil");
  return holding(AppleEventDescriptor::text(read(value)));
}
+ (NSAppleEventDescriptor*)descriptorWithTypeCode:(OSType)code {
  return holding(AppleEventDescriptor::typeCode(code));
}
+ (NSAppleEventDescriptor*)descriptorWithEnumCode:(OSType)code {
  return holding(AppleEventDescriptor::enumerator(code));
}
+ (NSAppleEventDescriptor*)listDescriptor {
  return empty(typeAEList);
}
+ (NSAppleEventDescriptor*)recordDescriptor {
  return empty(typeAERecord);
}
+ (NSAppleEventDescriptor*)currentProcessDescriptor {
  return empty('psn ');
}
+ (NSAppleEventDescriptor*)appleEventWithEventClass:(AEEventClass)eventClass
                                            eventID:(AEEventID)eventID
                                   targetDescriptor:(NSAppleEventDescriptor*)target
                                           returnID:(AEReturnID)returnID
                                      transactionID:(AETransactionID)transactionID {
  NSAppleEventDescriptor* one = empty('aevt');
  one->_eventClass = eventClass;
  one->_eventID = eventID;
  return one;
}
- (DescType)descriptorType {
  return _type;
}
- (NSInteger)numberOfItems {
  return static_cast<NSInteger>(_items.size());
}
- (NSAppleEventDescriptor*)descriptorAtIndex:(NSInteger)index {
  if (index < 1 || index > self.numberOfItems) return nil;
  return _items[static_cast<std::size_t>(index - 1)].second;
}
- (AEKeyword)keywordForDescriptorAtIndex:(NSInteger)index {
  if (index < 1 || index > self.numberOfItems) return 0;
  return _items[static_cast<std::size_t>(index - 1)].first;
}
- (void)insertDescriptor:(NSAppleEventDescriptor*)descriptor atIndex:(NSInteger)index {
  if (_type != typeAEList || index < 0 || index > self.numberOfItems + 1)
    raise("NSInvalidArgumentException", "a list has no such place");
  if (!descriptor) raise("NSInvalidArgumentException", "nothing is inserted into a list");
  if (index == 0 || index > self.numberOfItems) {
    _items.push_back({0, descriptor});
  } else {
    _items[static_cast<std::size_t>(index - 1)].second = descriptor;  // "replaces an existing one"
  }
}
- (void)setDescriptor:(NSAppleEventDescriptor*)descriptor forKeyword:(AEKeyword)keyword {
  if (_type != typeAERecord && _type != 'aevt')
    raise("NSInvalidArgumentException", "only a record has keywords");
  if (!descriptor) raise("NSInvalidArgumentException", "nothing under a keyword");
  for (auto& [known, value] : _items) {
    if (known == keyword) {
      value = descriptor;
      return;
    }
  }
  _items.push_back({keyword, descriptor});
}
- (void)setParamDescriptor:(NSAppleEventDescriptor*)descriptor forKeyword:(AEKeyword)keyword {
  if (_type != 'aevt') raise("NSInvalidArgumentException", "only an event has parameters");
  [self setDescriptor:descriptor forKeyword:keyword];
}
- (void)setAttributeDescriptor:(NSAppleEventDescriptor*)descriptor forKeyword:(AEKeyword)keyword {
  if (_type != 'aevt') raise("NSInvalidArgumentException", "only an event has attributes");
  _attributes.push_back({keyword, descriptor});
}
- (Boolean)booleanValue {
  return _value.booleanValue().value_or(false);
}
- (SInt32)int32Value {
  return static_cast<SInt32>(_value.integerValue().value_or(0));
}
- (double)doubleValue {
  return _value.doubleValue().value_or(0);
}
- (NSString*)stringValue {
  const auto text = _value.stringValue();
  return text ? made(std::string(*text)) : nil;
}
- (OSType)typeCodeValue {
  return _value.codeValue().value_or(0);
}
- (OSType)enumCodeValue {
  return _value.codeValue().value_or(0);
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

namespace quorin {

AppleEventDescriptor plain(NSAppleEventDescriptor* descriptor) {
  if (descriptor->_type == typeAEList) {
    AppleEventDescriptor::Items items;
    for (const auto& [keyword, item] : descriptor->_items) items.push_back(plain(item));
    return AppleEventDescriptor::list(std::move(items));
  }
  if (descriptor->_type == typeAERecord) {
    AppleEventDescriptor::Fields fields;
    for (const auto& [keyword, item] : descriptor->_items) fields.push_back({keyword, plain(item)});
    return AppleEventDescriptor::record(std::move(fields));
  }
  return descriptor->_value;
}

NSAppleEventDescriptor* wrapped(const AppleEventDescriptor& value) {
  NSAppleEventDescriptor* one = holding(value);
  if (value.type() != typeAEList && value.type() != typeAERecord) return one;
  for (const AppleEventDescriptor& item : value.items()) one->_items.push_back({0, wrapped(item)});
  for (const auto& [keyword, item] : value.fields())
    one->_items.push_back({keyword, wrapped(item)});
  return one;
}

AppleEvent plainEvent(NSAppleEventDescriptor* event) {
  if (event->_type != 'aevt') raise("NSInvalidArgumentException", "this is no event");
  AppleEvent made{event->_eventClass, event->_eventID, {}, {}};
  for (const auto& [keyword, item] : event->_items)
    made.parameters.push_back({keyword, plain(item)});
  for (const auto& [keyword, item] : event->_attributes)
    made.attributes.push_back({keyword, plain(item)});
  return made;
}

}  // namespace quorin
