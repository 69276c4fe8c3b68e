#include "kit/value/WholeNumber.h"

#include <algorithm>
#include <cmath>

namespace quorin {

std::optional<std::int64_t> wholeNumber(double number) {
  // Both are doubles exactly: -2^63 is a 64-bit integer, 2^63 is the first number that is not.
  if (!(number >= -0x1p63 && number < 0x1p63) || std::trunc(number) != number) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

std::optional<std::int64_t> wholeNumber(const JSONValue& value) {
  const double* const number = value.number();
  return number ? wholeNumber(*number) : std::nullopt;
}

std::vector<std::int64_t> wholeNumbers(const JSONValue::Array& array) {
  std::vector<std::int64_t> numbers;
  for (const JSONValue& item : array)
    if (const auto number = wholeNumber(item)) numbers.push_back(*number);
  return numbers;
}

bool isColour(const std::vector<std::int64_t>& rgb) {
  return rgb.size() == 3 && std::all_of(rgb.begin(), rgb.end(), isColourPart);
}

}  // namespace quorin
