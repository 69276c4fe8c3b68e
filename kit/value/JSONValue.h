// JSONValue: the one dynamic value of the system, for arguments, results, replies and events.
// A plain value type for any thread. Numbers are doubles; there is no integer case.
//
// Copying and comparing recurse once per level, so nothing enters the system deeper than
// maximumDepth: the JSON parser refuses such text and the conversions cut such trees off.
// Destruction does not recurse and is safe at any depth.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace quorin {

class JSONValue {
 public:
  enum class Case { boolean, number, string, array, object, null };
  using Array = std::vector<JSONValue>;
  using Object = std::map<std::string, JSONValue>;  // ordered by the bytes of the UTF-8 keys

  // How many containers may enclose one another in a value that comes from outside.
  static constexpr std::size_t maximumDepth = 512;

  JSONValue() : data_(std::nullptr_t{}) {}
  JSONValue(std::nullptr_t) : data_(std::nullptr_t{}) {}
  JSONValue(bool value) : data_(value) {}
  JSONValue(double value) : data_(value) {}
  JSONValue(int value) : data_(static_cast<double>(value)) {}
  JSONValue(std::string value) : data_(std::move(value)) {}
  JSONValue(const char* value) : data_(std::string(value)) {}
  JSONValue(Array value) : data_(std::move(value)) {}
  JSONValue(Object value) : data_(std::move(value)) {}
  // Pointers other than text would otherwise turn into booleans in silence.
  template <typename T>
  JSONValue(const T*) = delete;

  JSONValue(const JSONValue&) = default;
  JSONValue(JSONValue&&) noexcept = default;
  JSONValue& operator=(const JSONValue& other);
  JSONValue& operator=(JSONValue&& other) noexcept;
  ~JSONValue() {
    if (isContainer()) dismantle();
  }

  Case type() const { return static_cast<Case>(data_.index()); }
  bool isNull() const { return type() == Case::null; }
  bool isContainer() const { return type() == Case::array || type() == Case::object; }

  // The payload when the value has that case, else a null pointer.
  const bool* boolean() const { return std::get_if<bool>(&data_); }
  const double* number() const { return std::get_if<double>(&data_); }
  const std::string* string() const { return std::get_if<std::string>(&data_); }
  const Array* array() const { return std::get_if<Array>(&data_); }
  const Object* object() const { return std::get_if<Object>(&data_); }
  Array* array() { return std::get_if<Array>(&data_); }
  Object* object() { return std::get_if<Object>(&data_); }

  // The member of an object, else a null pointer.
  const JSONValue* member(const std::string& key) const;

  // Same case and equal payload: IEEE equality of numbers, canonical equivalence of strings and
  // of keys. No coercion between cases.
  bool operator==(const JSONValue& other) const;

 private:
  void dismantle() noexcept;  // empties the containers below this one, level by level

  std::variant<bool, double, std::string, Array, Object, std::nullptr_t> data_;
};

}  // namespace quorin
