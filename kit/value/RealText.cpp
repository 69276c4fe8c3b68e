#include "kit/value/RealText.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace quorin {

char* writeReal(char* out, char* end, double value) {
#ifdef __cpp_lib_to_chars
  return std::to_chars(out, end, value).ptr;
#else
  return writeRealByDigits(out, end, value);
#endif
}

char* writeRealByDigits(char* out, char* end, double value) {
  int length = 0;
  for (int digits = 15; digits <= 17; ++digits) {
    length = std::snprintf(out, static_cast<std::size_t>(end - out), "%.*g", digits, value);
    if (std::strtod(out, nullptr) == value) break;
  }
  return out + length;
}

}  // namespace quorin
