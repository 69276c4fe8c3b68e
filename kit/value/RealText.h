// Real numbers as text that reads back as the same number. Pure; any thread.
#pragma once

#include <cstddef>

namespace quorin {

// Room for any finite number.
constexpr std::size_t longestReal = 32;

// Writes the shortest such text of a finite number and gives its end.
char* writeReal(char* out, char* end, double value);

// The same by trying 15, 16 and 17 digits, which is slower and may be a few characters longer: for
// libraries that lack the conversion, as that of macOS 13.0 does. Expects the C locale's numbers.
char* writeRealByDigits(char* out, char* end, double value);

}  // namespace quorin
