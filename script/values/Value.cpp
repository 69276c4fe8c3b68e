#include "script/values/Value.h"

#include <cmath>

#include "script/lex/Numbers.h"
#include "script/terms/Words.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

bool ownsOthers(const Value& value) {
  return value.list() || value.record() || value.reference();
}

// Takes values apart one after the other, so that a list nested a million deep needs no more stack
// than a flat one.
void release(std::vector<Value> pending) {
  while (!pending.empty()) {
    Value value = std::move(pending.back());
    pending.pop_back();
    if (const Value::List* list = value.list(); list && list->use_count() == 1) {
      if ((*list)->received()) continue;
      for (Value& item : (*list)->items()) {
        if (ownsOthers(item)) pending.push_back(std::move(item));
      }
    } else if (const Value::Record* record = value.record(); record && record->use_count() == 1) {
      for (RecordData::Field& field : (*record)->fields()) {
        if (ownsOthers(field.second)) pending.push_back(std::move(field.second));
      }
    } else if (const auto* reference = value.as<Value::ReferencePointer>();
               reference && reference->use_count() == 1) {
      if (ownsOthers((*reference)->container)) pending.push_back((*reference)->container);
    }
  }
}

}  // namespace

Value Value::missing() {
  return type(fourCharCode("msng"));
}

Value Value::makeList(std::vector<Value> items) {
  return std::make_shared<ListData>(std::move(items));
}

Value Value::number(double value) {
  if (value == std::trunc(value) && std::abs(value) <= maximumInteger) {
    return static_cast<std::int32_t>(value);
  }
  return value;
}

bool Value::isMissing() const {
  const auto* constant = as<Constant>();
  return constant && constant->kind == Constant::Kind::type &&
         constant->code == fourCharCode("msng");
}

double Value::number() const {
  if (const auto* integer = as<std::int32_t>()) return *integer;
  if (const auto* real = as<double>()) return *real;
  return 0;
}

const Specifier* Value::specifier() const {
  const auto* pointer = as<SpecifierPointer>();
  return pointer ? pointer->get() : nullptr;
}

const Reference* Value::reference() const {
  const auto* pointer = as<ReferencePointer>();
  return pointer ? pointer->get() : nullptr;
}

Application* Value::application() const {
  if (const auto* object = as<ApplicationObject>()) return object->application;
  return specifier() ? specifier()->application : nullptr;
}

std::vector<Value>& ListData::items() {
  if (!received_.empty()) {
    items_.reserve(received_.size());
    for (AppleEventDescriptor& item : received_) {
      items_.push_back(fromDescriptor(std::move(item), origin_));
    }
    received_ = {};
  }
  return items_;
}

ListData::~ListData() {
  std::vector<Value> pending;
  for (Value& item : items_) {
    if (ownsOthers(item)) pending.push_back(std::move(item));
  }
  if (!pending.empty()) release(std::move(pending));
}

RecordData::~RecordData() {
  std::vector<Value> pending;
  for (Field& field : fields_) {
    if (ownsOthers(field.second)) pending.push_back(std::move(field.second));
  }
  if (!pending.empty()) release(std::move(pending));
}

Value* RecordData::find(const RecordKey& key) {
  for (Field& field : fields_) {
    if (field.first == key) return &field.second;
  }
  return nullptr;
}

bool RecordKey::operator==(const RecordKey& other) const {
  if (code != other.code) return false;
  return code != 0 || lowerCase(label) == lowerCase(other.label);
}

}  // namespace quorin::script
