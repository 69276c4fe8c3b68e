#include "kit/value/JSONValue.h"

#include <utility>

#include "kit/value/Unicode.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

// Moves the containers directly inside `value` to `pending`, leaving empty ones behind.
void takeContainers(JSONValue& value, Array& pending) {
  if (Array* items = value.array()) {
    for (JSONValue& item : *items) {
      if (item.isContainer()) pending.push_back(std::move(item));
    }
  } else if (Object* members = value.object()) {
    for (auto& [key, item] : *members) {
      if (item.isContainer()) pending.push_back(std::move(item));
    }
  }
}

bool sameBytesInEveryKey(const Object& a, const Object& b) {
  auto other = b.begin();
  for (auto one = a.begin(); one != a.end(); ++one, ++other) {
    if (one->first != other->first) return false;
  }
  return true;
}

// A value of an object, compared as such.
struct SameValue {
  const JSONValue* value;
  bool operator==(const SameValue& other) const { return *value == *other.value; }
};

// The values under each key in its composed form. An object may spell one key in several ways: its
// values then stay in the order of the bytes, so that objects compare alike from either side.
std::map<std::string, std::vector<SameValue>> byComposedKey(const Object& members) {
  std::map<std::string, std::vector<SameValue>> composed;
  for (const auto& [key, value] : members) composed[toNFC(key)].push_back({&value});
  return composed;
}

bool equalObjects(const Object& a, const Object& b) {
  if (a.size() != b.size()) return false;
  if (sameBytesInEveryKey(a, b)) {
    auto other = b.begin();
    for (auto one = a.begin(); one != a.end(); ++one, ++other) {
      if (!(one->second == other->second)) return false;
    }
    return true;
  }
  return byComposedKey(a) == byComposedKey(b);
}

}  // namespace

JSONValue& JSONValue::operator=(const JSONValue& other) {
  return *this = JSONValue(other);
}

// The old payload goes through a temporary so that its destruction does not recurse either, and so
// that a value may be replaced by a part of itself.
JSONValue& JSONValue::operator=(JSONValue&& other) noexcept {
  JSONValue incoming(std::move(other));
  data_.swap(incoming.data_);
  return *this;
}

void JSONValue::dismantle() noexcept {
  Array pending;
  takeContainers(*this, pending);
  while (!pending.empty()) {
    JSONValue next = std::move(pending.back());
    pending.pop_back();
    takeContainers(next, pending);
    next.data_ = nullptr;
  }
}

const JSONValue* JSONValue::member(const std::string& key) const {
  const Object* members = object();
  if (!members) return nullptr;
  auto found = members->find(key);
  return found == members->end() ? nullptr : &found->second;
}

bool JSONValue::operator==(const JSONValue& other) const {
  if (type() != other.type()) return false;
  switch (type()) {
    case Case::boolean:
      return *boolean() == *other.boolean();
    case Case::number:
      return *number() == *other.number();
    case Case::string:
      return canonicallyEqual(*string(), *other.string());
    case Case::array:
      return *array() == *other.array();
    case Case::object:
      return equalObjects(*object(), *other.object());
    case Case::null:
      return true;
  }
  return false;
}

}  // namespace quorin
