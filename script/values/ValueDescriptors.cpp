#include "script/values/ValueDescriptors.h"

#include <cmath>

#include "script/lex/Numbers.h"
#include "script/values/Failure.h"
#include "script/values/LocalObjects.h"

namespace quorin::script {
namespace {

constexpr FourCharCode userFields = fourCharCode("usrf");

FourCharCode descriptorType(Constant::Kind kind) {
  switch (kind) {
    case Constant::Kind::type:
      return fourCharCode("type");
    case Constant::Kind::enumerator:
      return fourCharCode("enum");
    case Constant::Kind::property:
      return fourCharCode("prop");
    case Constant::Kind::keyword:
      return fourCharCode("keyw");
  }
  return fourCharCode("type");
}

enum class Source { kept, givenAway };

struct Encoder {
  WorkBudget& budget;
  int depth;
  Source source;

  AppleEventDescriptor encode(const Value& value) const {
    if (depth > maximumValueDepth) failStackOverflow();
    budget.spend();
    return std::visit(Encoder{budget, depth + 1, source}, value.data());
  }

  // What a record or a reference holds may be reached in other ways.
  Encoder keeping() const { return {budget, depth, Source::kept}; }
  bool isLastOf(const Value::List& list) const {
    return source == Source::givenAway && list.use_count() == 1;
  }

  AppleEventDescriptor operator()(std::monostate) const { return AppleEventDescriptor::null(); }
  AppleEventDescriptor operator()(bool value) const { return AppleEventDescriptor::boolean(value); }
  AppleEventDescriptor operator()(std::int32_t value) const {
    return AppleEventDescriptor::integer(value);
  }
  AppleEventDescriptor operator()(double value) const { return AppleEventDescriptor::real(value); }
  AppleEventDescriptor operator()(const std::string& value) const {
    return AppleEventDescriptor::text(value);
  }
  AppleEventDescriptor operator()(const Value::List& list) const {
    if (const auto* received = list->received()) {
      budget.spend(received->size());
      if (isLastOf(list)) return AppleEventDescriptor::list(list->takeReceived());
      return AppleEventDescriptor::list(*received);
    }
    AppleEventDescriptor::Items items;
    items.reserve(list->size());
    const Encoder inner{budget, depth, isLastOf(list) ? source : Source::kept};
    for (const Value& item : list->items()) items.push_back(inner.encode(item));
    return AppleEventDescriptor::list(std::move(items));
  }
  AppleEventDescriptor operator()(const Value::Record& record) const {
    AppleEventDescriptor::Fields fields;
    AppleEventDescriptor::Items own;
    for (const auto& [key, value] : record->fields()) {
      if (key.code != 0) {
        fields.push_back({key.code, keeping().encode(value)});
      } else {
        own.push_back(AppleEventDescriptor::text(key.label));
        own.push_back(keeping().encode(value));
      }
    }
    if (!own.empty()) fields.push_back({userFields, AppleEventDescriptor::list(std::move(own))});
    return AppleEventDescriptor::record(std::move(fields));
  }
  AppleEventDescriptor operator()(const Constant& constant) const {
    if (constant.kind == Constant::Kind::enumerator && constant.code == fourCharCode("null")) {
      return AppleEventDescriptor::null();
    }
    return AppleEventDescriptor::withInteger(descriptorType(constant.kind), constant.code);
  }
  AppleEventDescriptor operator()(const Date& date) const {
    return AppleEventDescriptor::withInteger(fourCharCode("ldt "), date.seconds);
  }
  AppleEventDescriptor operator()(const Value::SpecifierPointer& specifier) const {
    return specifier->descriptor;
  }
  AppleEventDescriptor operator()(const Value::ReferencePointer& reference) const {
    return keeping().encode(fetch(*reference));
  }
  AppleEventDescriptor operator()(const ApplicationObject&) const {
    return AppleEventDescriptor::null();
  }
  AppleEventDescriptor operator()(const ScriptSelf&) const { return AppleEventDescriptor::null(); }
  AppleEventDescriptor operator()(const LanguageSelf&) const {
    return AppleEventDescriptor::null();
  }
  AppleEventDescriptor operator()(const Value::OpaquePointer& opaque) const { return *opaque; }
};

Value decodeInteger(const AppleEventDescriptor& descriptor) {
  const std::int64_t value = descriptor.integerValue().value_or(0);
  return Value::number(static_cast<double>(value));
}

Value decodeRecord(const AppleEventDescriptor& descriptor, Application* origin) {
  std::vector<RecordData::Field> fields;
  for (const AppleEventDescriptor::Field& field : descriptor.fields()) {
    if (field.keyword != userFields) {
      fields.emplace_back(RecordKey{field.keyword, {}}, fromDescriptor(field.value, origin));
      continue;
    }
    const AppleEventDescriptor::Items& own = field.value.items();
    for (std::size_t i = 0; i + 1 < own.size(); i += 2) {
      fields.emplace_back(RecordKey{0, std::string(own[i].stringValue().value_or(""))},
                          fromDescriptor(own[i + 1], origin));
    }
  }
  return std::make_shared<RecordData>(std::move(fields));
}

}  // namespace

AppleEventDescriptor toDescriptor(const Value& value) {
  WorkBudget budget;
  return Encoder{budget, 0, Source::kept}.encode(value);
}

AppleEventDescriptor takeDescriptor(Value value) {
  WorkBudget budget;
  return Encoder{budget, 0, Source::givenAway}.encode(value);
}

Value fromDescriptor(AppleEventDescriptor descriptor, Application* origin) {
  switch (descriptor.type()) {
    case fourCharCode("utxt"):
    case fourCharCode("utf8"):
    case fourCharCode("TEXT"):
      if (const auto text = descriptor.stringValue()) return std::string(*text);
      break;
    case fourCharCode("doub"):
    case fourCharCode("sing"):
    case fourCharCode("ldbl"):
    case fourCharCode("exte"):
      if (const auto number = descriptor.doubleValue()) return *number;
      break;
    case fourCharCode("long"):
    case fourCharCode("shor"):
    case fourCharCode("magn"):
    case fourCharCode("comp"):
    case fourCharCode("ucom"):
      if (descriptor.integerValue()) return decodeInteger(descriptor);
      break;
    case fourCharCode("true"):
    case fourCharCode("fals"):
    case fourCharCode("bool"):
      if (const auto flag = descriptor.booleanValue()) return *flag;
      break;
    case fourCharCode("type"):
      return Constant{Constant::Kind::type, descriptor.codeValue().value_or(0), origin};
    case fourCharCode("enum"):
      return Constant{Constant::Kind::enumerator, descriptor.codeValue().value_or(0), origin};
    case fourCharCode("prop"):
      return Constant{Constant::Kind::property, descriptor.codeValue().value_or(0), origin};
    case fourCharCode("keyw"):
      return Constant{Constant::Kind::keyword, descriptor.codeValue().value_or(0), origin};
    case fourCharCode("null"):
      return Constant{Constant::Kind::enumerator, fourCharCode("null")};
    case fourCharCode("list"):
      return std::make_shared<ListData>(std::move(descriptor.items()), origin);
    case fourCharCode("reco"):
      return decodeRecord(descriptor, origin);
    case fourCharCode("ldt "):
      return Date{descriptor.integerValue().value_or(0)};
    case fourCharCode("obj "):
    case fourCharCode("insl"):
      if (origin)
        return std::make_shared<const Specifier>(Specifier{std::move(descriptor), origin});
      break;
    default:
      break;
  }
  return std::make_shared<const AppleEventDescriptor>(std::move(descriptor));
}

}  // namespace quorin::script
