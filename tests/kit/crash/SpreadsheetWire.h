// The port Spreadsheet as messages: how the values of its calls look as JSON, and each call by name
// from a list of arguments. For a spreadsheet that outlives the process which works on it.
#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"
#include "kit/value/JSONValue.h"

namespace quorin::crash {

inline JSONValue encoded(bool value) {
  return value;
}
inline JSONValue encoded(int value) {
  return value;
}
inline JSONValue encoded(const std::string& value) {
  return value;
}
inline JSONValue encoded(host::Axis value) {
  return static_cast<int>(value);
}
inline JSONValue encoded(const host::Area& area) {
  return JSONValue::Array{area.firstRow, area.firstColumn, area.lastRow, area.lastColumn};
}
inline JSONValue encoded(const host::Color& color) {
  return JSONValue::Array{color.red, color.green, color.blue};
}
inline JSONValue encoded(const host::SheetRef& sheet) {
  return JSONValue::Array{sheet.book, sheet.sheet};
}
JSONValue encoded(const host::RangeRef& range);
JSONValue encoded(const host::FormatCondition& condition);
template <typename T>
JSONValue encoded(const std::vector<T>& values) {
  JSONValue::Array array;
  for (const T& value : values) array.push_back(encoded(value));
  return array;
}
template <typename T>
JSONValue encoded(const std::optional<T>& value) {
  if (!value) return nullptr;
  return encoded(*value);
}
inline JSONValue encoded(const host::RangeRef& range) {
  return JSONValue::Array{encoded(range.sheet), encoded(range.areas)};
}
inline JSONValue encoded(const host::FormatCondition& condition) {
  return JSONValue::Array{condition.id,           static_cast<int>(condition.kind),
                          condition.formula,      encoded(condition.areas),
                          condition.priority,     condition.stopIfTrue,
                          encoded(condition.fill)};
}

// A message of another shape is a defect of the harness and throws.
inline const JSONValue& item(const JSONValue& list, std::size_t index) {
  return list.array()->at(index);
}
inline int integer(const JSONValue& value) {
  return static_cast<int>(*value.number());
}

inline void decode(const JSONValue& value, bool& into) {
  into = *value.boolean();
}
inline void decode(const JSONValue& value, int& into) {
  into = integer(value);
}
inline void decode(const JSONValue& value, std::string& into) {
  into = *value.string();
}
inline void decode(const JSONValue& value, host::Axis& into) {
  into = static_cast<host::Axis>(integer(value));
}
inline void decode(const JSONValue& value, host::Area& into) {
  into = {integer(item(value, 0)), integer(item(value, 1)), integer(item(value, 2)),
          integer(item(value, 3))};
}
inline void decode(const JSONValue& value, host::Color& into) {
  into = {integer(item(value, 0)), integer(item(value, 1)), integer(item(value, 2))};
}
inline void decode(const JSONValue& value, host::SheetRef& into) {
  into = {*item(value, 0).string(), *item(value, 1).string()};
}
void decode(const JSONValue& value, host::RangeRef& into);
void decode(const JSONValue& value, host::FormatCondition& into);
template <typename T>
void decode(const JSONValue& value, std::vector<T>& into) {
  for (const JSONValue& each : *value.array()) decode(each, into.emplace_back());
}
template <typename T>
void decode(const JSONValue& value, std::optional<T>& into) {
  if (!value.isNull()) decode(value, into.emplace());
}
inline void decode(const JSONValue& value, host::RangeRef& into) {
  decode(item(value, 0), into.sheet);
  decode(item(value, 1), into.areas);
}
inline void decode(const JSONValue& value, host::FormatCondition& into) {
  into.id = *item(value, 0).string();
  into.kind = static_cast<host::ConditionKind>(integer(item(value, 1)));
  into.formula = *item(value, 2).string();
  decode(item(value, 3), into.areas);
  into.priority = integer(item(value, 4));
  into.stopIfTrue = *item(value, 5).boolean();
  decode(item(value, 6), into.fill);
}

// Carries a call out on a spreadsheet.
template <typename Result, typename... Parameters>
JSONValue carryOut(host::Spreadsheet& spreadsheet, Result (host::Spreadsheet::*call)(Parameters...),
                   const JSONValue& arguments) {
  std::tuple<std::remove_cvref_t<Parameters>...> values;
  std::apply(
      [&arguments](auto&... each) {
        std::size_t index = 0;
        (decode(item(arguments, index++), each), ...);
      },
      values);
  const auto carry = [&](const auto&... each) { return (spreadsheet.*call)(each...); };
  if constexpr (std::is_void_v<Result>) {
    std::apply(carry, values);
    return nullptr;
  } else {
    return encoded(std::apply(carry, values));
  }
}

// Of the calls that marking, revealing and clearing make. Others throw std::out_of_range.
JSONValue carryOut(host::Spreadsheet& spreadsheet, const std::string& call,
                   const JSONValue& arguments);

}  // namespace quorin::crash
