#import "app/macos/Descriptors.h"

#include <utility>

#import "app/macos/Text.h"

namespace quorin {
namespace {

NSAppleEventDescriptor* toList(const AppleEventDescriptor::Items& items) {
  NSAppleEventDescriptor* list = [NSAppleEventDescriptor listDescriptor];
  NSInteger position = 1;
  for (const AppleEventDescriptor& item : items) {
    [list insertDescriptor:toEventDescriptor(item) atIndex:position++];
  }
  return list;
}

NSAppleEventDescriptor* toRecord(const AppleEventDescriptor::Fields& fields) {
  NSAppleEventDescriptor* record = [NSAppleEventDescriptor recordDescriptor];
  for (const auto& [keyword, value] : fields) {
    [record setDescriptor:toEventDescriptor(value) forKeyword:keyword];
  }
  return record;
}

// The position of an item is its own, not one that could be past the end.
NSAppleEventDescriptor* item(NSAppleEventDescriptor* _Nullable found) {
  return found ? found : [NSAppleEventDescriptor nullDescriptor];
}

AppleEventDescriptor fromList(NSAppleEventDescriptor* list) {
  AppleEventDescriptor::Items items;
  for (NSInteger i = 1; i <= list.numberOfItems; ++i) {
    items.push_back(fromEventDescriptor(item([list descriptorAtIndex:i])));
  }
  return AppleEventDescriptor::list(std::move(items));
}

AppleEventDescriptor fromRecord(NSAppleEventDescriptor* record) {
  AppleEventDescriptor::Fields fields;
  for (NSInteger i = 1; i <= record.numberOfItems; ++i) {
    fields.push_back({[record keywordForDescriptorAtIndex:i],
                      fromEventDescriptor(item([record descriptorAtIndex:i]))});
  }
  return AppleEventDescriptor::record(std::move(fields));
}

AppleEventDescriptor fromText(NSAppleEventDescriptor* descriptor) {
  NSString* text = descriptor.stringValue;
  if (!text.UTF8String) return AppleEventDescriptor::withData(descriptor.descriptorType, {});
  return AppleEventDescriptor::withText(descriptor.descriptorType, fromNSString(text));
}

}  // namespace

NSAppleEventDescriptor* toEventDescriptor(const AppleEventDescriptor& value) {
  switch (value.type()) {
    case typeTrue:
    case typeFalse:
    case typeBoolean:
      return [NSAppleEventDescriptor descriptorWithBoolean:value.booleanValue().value_or(false)];
    case typeSInt32:
      return [NSAppleEventDescriptor
          descriptorWithInt32:static_cast<SInt32>(value.integerValue().value_or(0))];
    case typeIEEE64BitFloatingPoint:
      return [NSAppleEventDescriptor descriptorWithDouble:value.doubleValue().value_or(0)];
    case typeUnicodeText:
      return [NSAppleEventDescriptor
          descriptorWithString:toNSString(value.stringValue().value_or(std::string_view()))];
    case typeType:
      return [NSAppleEventDescriptor descriptorWithTypeCode:value.codeValue().value_or(0)];
    case typeEnumerated:
      return [NSAppleEventDescriptor descriptorWithEnumCode:value.codeValue().value_or(0)];
    case typeAEList:
      return toList(value.items());
    case typeAERecord:
      return toRecord(value.fields());
    default:
      return [NSAppleEventDescriptor nullDescriptor];
  }
}

AppleEventDescriptor fromEventDescriptor(NSAppleEventDescriptor* descriptor) {
  const DescType type = descriptor.descriptorType;
  switch (type) {
    case typeNull:
      return AppleEventDescriptor::null();
    case typeBoolean:
      return AppleEventDescriptor::boolean(descriptor.booleanValue);
    case typeTrue:
      return AppleEventDescriptor::boolean(true);
    case typeFalse:
      return AppleEventDescriptor::boolean(false);
    case typeSInt32:
      return AppleEventDescriptor::integer(descriptor.int32Value);
    case typeSInt16:
    case typeSInt64:
    case typeIEEE32BitFloatingPoint:
    case typeIEEE64BitFloatingPoint:
    case typeUInt32:
    case typeUInt16:
    case typeUInt64:
      return AppleEventDescriptor::withReal(type, descriptor.doubleValue);
    case typeChar:
    case typeUnicodeText:
    case typeUTF8Text:
      return fromText(descriptor);
    case typeType:
      return AppleEventDescriptor::typeCode(descriptor.typeCodeValue);
    case typeEnumerated:
      return AppleEventDescriptor::enumerator(descriptor.enumCodeValue);
    case typeAEList:
      return fromList(descriptor);
    case typeAERecord:
      return fromRecord(descriptor);
    default:
      return AppleEventDescriptor::withData(type, {});
  }
}

NSAppleEventDescriptor* toScriptEvent(const AppleEvent& event) {
  NSAppleEventDescriptor* made = [NSAppleEventDescriptor
      appleEventWithEventClass:event.eventClass
                       eventID:event.eventID
              targetDescriptor:[NSAppleEventDescriptor currentProcessDescriptor]
                      returnID:kAutoGenerateReturnID
                 transactionID:kAnyTransactionID];
  for (const auto& [keyword, value] : event.parameters) {
    [made setParamDescriptor:toEventDescriptor(value) forKeyword:keyword];
  }
  for (const auto& [keyword, value] : event.attributes) {
    [made setAttributeDescriptor:toEventDescriptor(value) forKeyword:keyword];
  }
  return made;
}

}  // namespace quorin
