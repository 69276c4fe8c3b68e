#include "kit/value/AppleEventDescriptor.h"

#include <utility>

#include "kit/value/Unicode.h"
#include "kit/value/WholeNumber.h"

namespace quorin {
namespace {

using Items = AppleEventDescriptor::Items;
using Fields = AppleEventDescriptor::Fields;

constexpr FourCharCode typeBoolean = fourCharCode("bool");
constexpr FourCharCode typeTrue = fourCharCode("true");
constexpr FourCharCode typeFalse = fourCharCode("fals");
constexpr FourCharCode typeType = fourCharCode("type");
constexpr FourCharCode typeNull = fourCharCode("null");

bool isCodeType(FourCharCode type) {
  return type == typeType || type == fourCharCode("enum") || type == fourCharCode("prop") ||
         type == fourCharCode("keyw");
}

bool isTextType(FourCharCode type) {
  return type == fourCharCode("TEXT") || type == fourCharCode("utxt") ||
         type == fourCharCode("utf8");
}

// A caller that changes the children of something that has none changes nothing.
template <typename Container>
Container& emptied() {
  thread_local Container none;
  none.clear();
  return none;
}

}  // namespace

AppleEventDescriptor::AppleEventDescriptor() : type_(typeNull) {}

AppleEventDescriptor::AppleEventDescriptor(FourCharCode type, Data data)
    : type_(type), data_(std::move(data)) {}

AppleEventDescriptor& AppleEventDescriptor::operator=(const AppleEventDescriptor& other) {
  return *this = AppleEventDescriptor(other);
}

// The old data goes through a temporary so that its destruction does not recurse either, and so
// that a descriptor may be replaced by a part of itself.
AppleEventDescriptor& AppleEventDescriptor::operator=(AppleEventDescriptor&& other) noexcept {
  AppleEventDescriptor incoming(std::move(other));
  std::swap(type_, incoming.type_);
  data_.swap(incoming.data_);
  return *this;
}

AppleEventDescriptor::~AppleEventDescriptor() {
  if (!hasChildren()) return;
  Items pending;
  takeChildren(pending);
  while (!pending.empty()) {
    AppleEventDescriptor next = std::move(pending.back());
    pending.pop_back();
    next.takeChildren(pending);
    next.data_ = std::monostate{};
  }
}

bool AppleEventDescriptor::hasChildren() const {
  return std::holds_alternative<Items>(data_) || std::holds_alternative<Fields>(data_);
}

void AppleEventDescriptor::takeChildren(Items& pending) {
  if (auto* items = std::get_if<Items>(&data_)) {
    for (AppleEventDescriptor& item : *items) {
      if (item.hasChildren()) pending.push_back(std::move(item));
    }
  } else if (auto* fields = std::get_if<Fields>(&data_)) {
    for (Field& each : *fields) {
      if (each.value.hasChildren()) pending.push_back(std::move(each.value));
    }
  }
}

AppleEventDescriptor AppleEventDescriptor::null() {
  return {};
}

AppleEventDescriptor AppleEventDescriptor::boolean(bool value) {
  return {value ? typeTrue : typeFalse, std::monostate{}};
}

AppleEventDescriptor AppleEventDescriptor::integer(std::int32_t value) {
  return withInteger(fourCharCode("long"), value);
}

AppleEventDescriptor AppleEventDescriptor::real(double value) {
  return withReal(fourCharCode("doub"), value);
}

AppleEventDescriptor AppleEventDescriptor::text(std::string utf8) {
  return withText(fourCharCode("utxt"), std::move(utf8));
}

AppleEventDescriptor AppleEventDescriptor::typeCode(FourCharCode code) {
  return withInteger(typeType, code);
}

AppleEventDescriptor AppleEventDescriptor::enumerator(FourCharCode code) {
  return withInteger(fourCharCode("enum"), code);
}

AppleEventDescriptor AppleEventDescriptor::missingValue() {
  return typeCode(fourCharCode("msng"));
}

AppleEventDescriptor AppleEventDescriptor::list(Items items) {
  return {fourCharCode("list"), std::move(items)};
}

AppleEventDescriptor AppleEventDescriptor::record() {
  return record(Fields());
}

AppleEventDescriptor AppleEventDescriptor::record(Fields fields) {
  return withFields(fourCharCode("reco"), std::move(fields));
}

AppleEventDescriptor AppleEventDescriptor::specifier(Fields fields) {
  return withFields(fourCharCode("obj "), std::move(fields));
}

AppleEventDescriptor AppleEventDescriptor::withInteger(FourCharCode type, std::int64_t value) {
  return {type, value};
}

AppleEventDescriptor AppleEventDescriptor::withReal(FourCharCode type, double value) {
  return {type, value};
}

AppleEventDescriptor AppleEventDescriptor::withText(FourCharCode type, std::string utf8) {
  return {type, std::move(utf8)};
}

AppleEventDescriptor AppleEventDescriptor::withFields(FourCharCode type, Fields fields) {
  return {type, std::move(fields)};
}

AppleEventDescriptor AppleEventDescriptor::withData(FourCharCode type, std::string bytes) {
  return {type, std::move(bytes)};
}

bool AppleEventDescriptor::isMissingValue() const {
  return type_ == typeType && codeValue() == fourCharCode("msng");
}

std::optional<bool> AppleEventDescriptor::booleanValue() const {
  if (type_ == typeTrue) return true;
  if (type_ == typeFalse) return false;
  if (type_ != typeBoolean) return std::nullopt;
  const auto* value = std::get_if<std::int64_t>(&data_);
  return value ? std::optional(*value != 0) : std::nullopt;
}

std::optional<std::int64_t> AppleEventDescriptor::integerValue() const {
  if (type_ == typeBoolean || isCodeType(type_)) return std::nullopt;
  if (const auto* value = std::get_if<std::int64_t>(&data_)) return *value;
  const auto* value = std::get_if<double>(&data_);
  return value ? wholeNumber(*value) : std::nullopt;
}

std::optional<double> AppleEventDescriptor::doubleValue() const {
  if (type_ == typeBoolean || isCodeType(type_)) return std::nullopt;
  if (const auto* value = std::get_if<double>(&data_)) return *value;
  const auto* value = std::get_if<std::int64_t>(&data_);
  return value ? std::optional(static_cast<double>(*value)) : std::nullopt;
}

std::optional<std::string_view> AppleEventDescriptor::stringValue() const {
  const auto* text = std::get_if<std::string>(&data_);
  if (!text || !isTextType(type_) || !isValidUTF8(*text)) return std::nullopt;
  return *text;
}

std::optional<FourCharCode> AppleEventDescriptor::codeValue() const {
  const auto* value = std::get_if<std::int64_t>(&data_);
  if (!value || !isCodeType(type_)) return std::nullopt;
  return static_cast<FourCharCode>(*value);
}

const Items& AppleEventDescriptor::items() const {
  const auto* items = std::get_if<Items>(&data_);
  return items ? *items : emptied<Items>();
}

Items& AppleEventDescriptor::items() {
  auto* items = std::get_if<Items>(&data_);
  return items ? *items : emptied<Items>();
}

const Fields& AppleEventDescriptor::fields() const {
  const auto* fields = std::get_if<Fields>(&data_);
  return fields ? *fields : emptied<Fields>();
}

Fields& AppleEventDescriptor::fields() {
  auto* fields = std::get_if<Fields>(&data_);
  return fields ? *fields : emptied<Fields>();
}

const AppleEventDescriptor* AppleEventDescriptor::field(FourCharCode keyword) const {
  for (const Field& each : fields()) {
    if (each.keyword == keyword) return &each.value;
  }
  return nullptr;
}

bool AppleEventDescriptor::operator==(const AppleEventDescriptor& other) const {
  return type_ == other.type_ && data_ == other.data_;
}

}  // namespace quorin
