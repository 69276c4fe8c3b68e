// Numbers as AppleScript writes, reads and rounds them. Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorin::script {

inline constexpr double maximumInteger = 536870911;  // beyond it, either way, numbers are reals

// "12"; reals have a decimal point, at most 12 digits, and an exponent from 10000 on and from
// 0.0001 downward: "1.5", "1.0E+4". Always with a point, whatever the user's language.
std::string textOf(std::int32_t value);
std::string textOf(double value);

// The number that the whole text spells, blanks around it allowed; none otherwise.
struct ParsedNumber {
  double value = 0;
  bool isInteger = false;  // spelled without point or exponent, and within range
};
std::optional<ParsedNumber> parseNumber(std::string_view text);

// Digits with an optional minus, point and exponent; infinite when too large, none when malformed.
std::optional<double> parseDecimal(std::string_view text);

// The same, and the scientific spelling with at most 12 digits ("1.5e+20"), for libraries that lack
// the conversions, as that of macOS does. They expect the C locale's numbers.
std::optional<double> parseDecimalPlain(std::string_view text);
std::string scientificPlain(double value);

double roundToEven(double value);  // ties to the even neighbour

}  // namespace quorin::script
