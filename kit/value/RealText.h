// Real numbers to text that reads back as the same number, and back. Pure; any thread. What is
// named "plain" is for libraries that lack the conversions, as that of macOS 13.0 does, and expects
// the C locale's numbers.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quorin {

// Room for any finite number.
constexpr std::size_t longestReal = 32;

// Writes the shortest such text of a finite number and gives its end.
char* writeReal(char* out, char* end, double value);

// The same by trying 15, 16 and 17 digits, which is slower and may be a few characters longer.
char* writeRealPlain(char* out, char* end, double value);

// The finite number that the whole text is, with a point, an exponent, a minus in front, and
// nothing else: no white space, no plus in front, no hexadecimal digits, no name.
std::optional<double> readReal(std::string_view text);
std::optional<double> readRealPlain(std::string_view text);

}  // namespace quorin
