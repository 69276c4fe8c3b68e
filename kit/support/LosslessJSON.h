// LosslessJSON: a JSON document that is changed in places and written back. Numbers stay the text
// they were, so integers beyond a double's precision and decimals survive. Pure, any thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/value/JSONText.h"
#include "kit/value/JSONValue.h"

namespace quorin {

class LosslessJSON {
 public:
  using Array = std::vector<LosslessJSON>;
  using Object = std::map<std::string, LosslessJSON>;
  struct Literal {  // a number, true, false or null as it is spelled
    std::string text;
  };
  enum class Style { compact, pretty };

  LosslessJSON(Literal literal) : data_(std::move(literal)) {}
  LosslessJSON(std::string text) : data_(std::move(text)) {}
  LosslessJSON(Array items) : data_(std::move(items)) {}
  LosslessJSON(Object members) : data_(std::move(members)) {}

  static LosslessJSON integer(std::int64_t value) { return Literal{std::to_string(value)}; }
  // Throws std::invalid_argument for text that is not valid UTF-8.
  static LosslessJSON from(const JSONValue& value);

  // Strict JSON in UTF-8 within the limits, of which `values` is not counted; throws
  // std::invalid_argument with a sentence about what is wrong. Of equal keys the last one counts.
  static LosslessJSON parse(std::string_view text, const JSONLimits& limits = {});

  // The payload when the value has that case, else a null pointer.
  const std::string* number() const;  // the spelling
  const std::string* string() const { return std::get_if<std::string>(&data_); }
  const Array* array() const { return std::get_if<Array>(&data_); }
  const Object* object() const { return std::get_if<Object>(&data_); }
  Object* object() { return std::get_if<Object>(&data_); }
  bool isNull() const;

  // With ascending keys; the pretty form has a line for each item, two spaces a level.
  std::string text(Style style) const;

 private:
  void write(std::string& out, Style style, std::size_t level) const;

  std::variant<Literal, std::string, Array, Object> data_;
};

}  // namespace quorin
