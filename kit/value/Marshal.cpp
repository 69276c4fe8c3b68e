#include "kit/value/Marshal.h"

#include <cmath>
#include <utility>
#include <vector>

#include "kit/value/MacRoman.h"
#include "kit/value/Unicode.h"

namespace quorin::Marshal {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

constexpr FourCharCode keyUserFields = fourCharCode("usrf");
constexpr FourCharCode typeList = fourCharCode("list");

AppleEventDescriptor fromNumber(double value) {
  if (value > -2147483649.0 && value < 2147483648.0 && value == std::trunc(value)) {
    return AppleEventDescriptor::integer(static_cast<std::int32_t>(value));
  }
  return AppleEventDescriptor::real(value);
}

// `room` is how many containers may still be opened.
AppleEventDescriptor describe(const JSONValue& value, std::size_t room) {
  if (value.isContainer() && room == 0) return AppleEventDescriptor::null();
  switch (value.type()) {
    case JSONValue::Case::boolean:
      return AppleEventDescriptor::boolean(*value.boolean());
    case JSONValue::Case::number:
      return fromNumber(*value.number());
    case JSONValue::Case::string:
      return AppleEventDescriptor::text(*value.string());
    case JSONValue::Case::array: {
      AppleEventDescriptor::Items items;
      items.reserve(value.array()->size());
      for (const JSONValue& item : *value.array()) items.push_back(describe(item, room - 1));
      return AppleEventDescriptor::list(std::move(items));
    }
    case JSONValue::Case::object: {
      AppleEventDescriptor::Items pairs;
      pairs.reserve(2 * value.object()->size());
      for (const auto& [key, member] : *value.object()) {
        pairs.push_back(AppleEventDescriptor::text(key));
        pairs.push_back(describe(member, room - 1));
      }
      return AppleEventDescriptor::record(
          {{keyUserFields, AppleEventDescriptor::list(std::move(pairs))}});
    }
    case JSONValue::Case::null:
      break;
  }
  return AppleEventDescriptor::null();
}

JSONValue marker(FourCharCode type) {
  return Object{{unmarshalledKey, fourCC(type)}};
}

JSONValue read(const AppleEventDescriptor& descriptor, std::size_t room);

void readUserFields(const AppleEventDescriptor& pairs, std::size_t room, Object& object) {
  const auto& items = pairs.items();
  for (std::size_t i = 0; i + 1 < items.size(); i += 2) {
    const JSONValue key = read(items[i], room);
    if (const std::string* text = key.string()) {
      object.insert_or_assign(*text, read(items[i + 1], room));
    }
  }
}

JSONValue readRecord(const AppleEventDescriptor& record, std::size_t room) {
  Object object;
  for (const auto& field : record.fields()) {
    if (field.keyword == keyUserFields && field.value.type() == typeList) {
      readUserFields(field.value, room, object);
    } else {
      object.insert_or_assign(fourCC(field.keyword), read(field.value, room));
    }
  }
  return object;
}

JSONValue read(const AppleEventDescriptor& descriptor, std::size_t room) {
  switch (descriptor.type()) {
    case fourCharCode("bool"):
    case fourCharCode("true"):
    case fourCharCode("fals"):
      return descriptor.booleanValue().value_or(false);
    case fourCharCode("shor"):
    case fourCharCode("long"):
    case fourCharCode("comp"):
    case fourCharCode("sing"):
    case fourCharCode("doub"):
    case fourCharCode("magn"):
    case fourCharCode("ushr"):
    case fourCharCode("ucom"):
      return descriptor.doubleValue().value_or(0.0);
    case fourCharCode("TEXT"):
    case fourCharCode("utxt"):
    case fourCharCode("utf8"): {
      const auto text = descriptor.stringValue();
      return text ? JSONValue(toNFC(std::string(*text))) : marker(descriptor.type());
    }
    case typeList: {
      if (room == 0) break;
      Array array;
      array.reserve(descriptor.items().size());
      for (const auto& item : descriptor.items()) array.push_back(read(item, room - 1));
      return array;
    }
    case fourCharCode("reco"):
      if (room == 0) break;
      return readRecord(descriptor, room - 1);
    case fourCharCode("null"):
    case fourCharCode("type"):
      return nullptr;
    default:
      break;
  }
  return marker(descriptor.type());
}

JSONValue convert(const AnyValue& any, std::size_t room) {
  switch (any.kind()) {
    case AnyValue::Kind::boolean:
      return any.boolean();
    case AnyValue::Kind::number:
      return any.number();
    case AnyValue::Kind::text:
      return any.text();
    case AnyValue::Kind::list: {
      if (room == 0) break;
      Array array;
      any.forEachItem([&](const AnyValue& item) { array.push_back(convert(item, room - 1)); });
      return array;
    }
    case AnyValue::Kind::dictionary: {
      if (room == 0) break;
      Object object;
      any.forEachMember([&](std::string key, const AnyValue& member) {
        object.insert_or_assign(std::move(key), convert(member, room - 1));
      });
      return object;
    }
    case AnyValue::Kind::absent:
    case AnyValue::Kind::null:
    case AnyValue::Kind::other:
      break;
  }
  return nullptr;
}

}  // namespace

AppleEventDescriptor toDescriptor(const JSONValue& value) {
  return describe(value, JSONValue::maximumDepth);
}

JSONValue fromDescriptor(const AppleEventDescriptor& descriptor) {
  return read(descriptor, JSONValue::maximumDepth);
}

std::string fourCC(FourCharCode code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    appendMacRoman(text, static_cast<unsigned char>(code >> shift & 0xFF));
  }
  return text;
}

JSONValue fromAny(const AnyValue& any) {
  return convert(any, JSONValue::maximumDepth);
}

JSONValue jsonObject(const JSONValue& value) {
  JSONValue result = value;
  std::vector<JSONValue*> pending{&result};
  while (!pending.empty()) {
    JSONValue& next = *pending.back();
    pending.pop_back();
    if (const double* number = next.number()) {
      if (!std::isfinite(*number)) next = nullptr;
    } else if (Array* array = next.array()) {
      for (JSONValue& item : *array) pending.push_back(&item);
    } else if (Object* object = next.object()) {
      for (auto& [key, member] : *object) pending.push_back(&member);
    }
  }
  return result;
}

bool containsUnmarshalled(const JSONValue& value) {
  std::vector<const JSONValue*> pending{&value};
  while (!pending.empty()) {
    const JSONValue& next = *pending.back();
    pending.pop_back();
    if (const Array* array = next.array()) {
      for (const JSONValue& item : *array) {
        if (item.isContainer()) pending.push_back(&item);
      }
    } else if (const Object* object = next.object()) {
      if (object->contains(unmarshalledKey)) return true;
      for (const auto& [key, member] : *object) {
        if (member.isContainer()) pending.push_back(&member);
      }
    }
  }
  return false;
}

}  // namespace quorin::Marshal
