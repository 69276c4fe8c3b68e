#include "kit/value/RealText.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace quorin {

char* writeReal(char* out, char* end, double value) {
#ifdef __cpp_lib_to_chars
  return std::to_chars(out, end, value).ptr;
#else
  return writeRealPlain(out, end, value);
#endif
}

char* writeRealPlain(char* out, char* end, double value) {
  int length = 0;
  for (int digits = 15; digits <= 17; ++digits) {
    length = std::snprintf(out, static_cast<std::size_t>(end - out), "%.*g", digits, value);
    if (std::strtod(out, nullptr) == value) break;
  }
  return out + length;
}

std::optional<double> readReal(std::string_view text) {
#ifdef __cpp_lib_to_chars
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [read, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || read != end || !std::isfinite(number)) return std::nullopt;
  return number;
#else
  return readRealPlain(text);
#endif
}

std::optional<double> readRealPlain(std::string_view text) {
  if (text.empty() || text.front() == '+') return std::nullopt;
  if (text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) return std::nullopt;
  const std::string copy(text);
  char* read = nullptr;
  errno = 0;
  const double number = std::strtod(copy.c_str(), &read);
  const bool tooSmall = number == 0 && errno == ERANGE;
  if (read != copy.c_str() + copy.size() || tooSmall || !std::isfinite(number)) return std::nullopt;
  return number;
}

}  // namespace quorin
