#include "script/lex/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace quorin::script {
namespace {

constexpr int significantDigits = 12;

// The shortest of the spellings with at most that many digits, in scientific form.
std::string scientific(double value) {
#ifdef __cpp_lib_to_chars
  char buffer[40];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
  const std::string shortest(buffer, result.ptr);
  const std::size_t digits = shortest.find('e') - (value < 0 ? 2 : 1);
  if (digits <= significantDigits) return shortest;
  result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific,
                         significantDigits - 1);
  std::string rounded(buffer, result.ptr);
  const std::size_t e = rounded.find('e');
  std::size_t end = e;
  while (rounded[end - 1] == '0') --end;
  if (rounded[end - 1] == '.') --end;
  return rounded.substr(0, end) + rounded.substr(e);
#else
  return scientificPlain(value);
#endif
}

}  // namespace

std::string scientificPlain(double value) {
  char buffer[40];
  for (int after = 0; after < significantDigits; ++after) {
    std::snprintf(buffer, sizeof buffer, "%.*e", after, value);
    if (std::strtod(buffer, nullptr) == value) return buffer;
  }
  std::string rounded(buffer);
  const std::size_t e = rounded.find('e');
  std::size_t end = e;
  while (rounded[end - 1] == '0') --end;
  if (rounded[end - 1] == '.') --end;
  return rounded.substr(0, end) + rounded.substr(e);
}

std::optional<double> parseDecimalPlain(std::string_view text) {
  if (text.empty() || text.front() == '+') return std::nullopt;
  if (text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) return std::nullopt;
  const std::string copy(text);
  char* read = nullptr;
  const double value = std::strtod(copy.c_str(), &read);
  if (read != copy.c_str() + copy.size()) return std::nullopt;
  return value;
}

std::string textOf(std::int32_t value) {
  return std::to_string(value);
}

std::string textOf(double value) {
  if (std::isnan(value)) return "NAN";
  if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
  if (value == 0) return std::signbit(value) ? "-0.0" : "0.0";
  const std::string text = scientific(value);
  const std::size_t e = text.find('e');
  const std::string sign = value < 0 ? "-" : "";
  const std::string mantissa = text.substr(sign.size(), e - sign.size());
  int exponent = 0;
  const char* from = text.data() + e + (text[e + 1] == '+' ? 2 : 1);
  std::from_chars(from, text.data() + text.size(), exponent);
  std::string digits = mantissa;
  if (digits.size() > 1) digits.erase(1, 1);
  const double magnitude = std::abs(value);
  if (magnitude >= 10000 || magnitude <= 0.0001) {
    return sign + (mantissa.size() > 1 ? mantissa : mantissa + ".0") +
           (exponent < 0 ? "E-" : "E+") + std::to_string(std::abs(exponent));
  }
  if (exponent < 0) {
    return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() < whole) digits.append(whole - digits.size(), '0');
  const std::string fraction = digits.substr(whole);
  return sign + digits.substr(0, whole) + "." + (fraction.empty() ? "0" : fraction);
}

std::optional<double> parseDecimal(std::string_view text) {
#ifdef __cpp_lib_to_chars
  double value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (stop != text.data() + text.size()) return std::nullopt;
  if (error == std::errc()) return value;
  if (error != std::errc::result_out_of_range) return std::nullopt;
  const std::size_t exponent = text.find_first_of("eE");
  const bool tiny = exponent == std::string_view::npos
                        ? text.find_first_not_of("-0.") > text.find('.')
                        : text.substr(exponent + 1).starts_with('-');
  const double magnitude = tiny ? 0 : HUGE_VAL;
  return text.starts_with('-') ? -magnitude : magnitude;
#else
  return parseDecimalPlain(text);
#endif
}

std::optional<ParsedNumber> parseNumber(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
  if (text.front() == '+') text.remove_prefix(1);
  const bool negative = !text.empty() && text.front() == '-';
  const std::string_view digits = text.substr(negative ? 1 : 0);
  // from_chars would also take "inf" and "nan".
  if (digits.empty() || !((digits[0] >= '0' && digits[0] <= '9') || digits[0] == '.')) {
    return std::nullopt;
  }
  const std::optional<double> value = parseDecimal(text);
  if (!value || !std::isfinite(*value)) return std::nullopt;
  const bool integer =
      digits.find_first_of(".eE") == std::string_view::npos && std::abs(*value) <= maximumInteger;
  return ParsedNumber{*value, integer};
}

double roundToEven(double value) {
  const double floor = std::floor(value);
  const double difference = value - floor;
  if (difference < 0.5) return floor;
  if (difference > 0.5) return floor + 1;
  return std::fmod(floor, 2) == 0 ? floor : floor + 1;
}

}  // namespace quorin::script
