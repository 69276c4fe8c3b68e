// Numbers that stand for counts, indices and parts of a colour. Pure functions for any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/value/JSONValue.h"

namespace quorin {

// The number as an integer when it is integral and within the signed 64-bit range.
std::optional<std::int64_t> wholeNumber(double number);
std::optional<std::int64_t> wholeNumber(const JSONValue& value);

// Those of an array, in order; what is no whole number is passed over.
std::vector<std::int64_t> wholeNumbers(const JSONValue::Array& array);

// True if it is the red, green or blue of a colour.
constexpr bool isColourPart(std::int64_t part) {
  return part >= 0 && part <= 255;
}

// True if these are red, green and blue.
bool isColour(const std::vector<std::int64_t>& rgb);

}  // namespace quorin
