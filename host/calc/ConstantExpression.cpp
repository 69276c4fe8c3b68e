#include "host/calc/ConstantExpression.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace quorin::host::calc {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The end of the text literal that begins at `start`; npos when it is not closed.
std::size_t endOfText(std::string_view excel, std::size_t start) {
  return excel.find('"', start + 1);  // a doubled quote ends one literal and begins the next
}

std::size_t endOfNumber(std::string_view excel, std::size_t at) {
  while (at < excel.size() && (isDigit(excel[at]) || excel[at] == '.')) ++at;
  if (at < excel.size() && (excel[at] == 'e' || excel[at] == 'E')) {
    std::size_t exponent = at + 1;
    if (exponent < excel.size() && (excel[exponent] == '+' || excel[exponent] == '-')) ++exponent;
    if (exponent == excel.size() || !isDigit(excel[exponent])) return at;
    at = exponent;
    while (at < excel.size() && isDigit(excel[at])) ++at;
  }
  return at;
}

bool isKnownWord(std::string_view word) {
  static constexpr std::array<std::string_view, 4> known = {"TRUE", "FALSE", "IFERROR",
                                                            "ERROR.TYPE"};
  std::string upper(word);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return std::find(known.begin(), known.end(), upper) != known.end();
}

}  // namespace

bool isConstantExpression(std::string_view excel) {
  constexpr std::string_view plain = " =+-*/^&%<>(){},;";
  std::size_t at = 0;
  while (at < excel.size()) {
    const char c = excel[at];
    if (c == '"') {
      const std::size_t end = endOfText(excel, at);
      if (end == std::string_view::npos) return false;
      at = end + 1;
    } else if (isDigit(c) || c == '.') {
      at = endOfNumber(excel, at);
    } else if (isLetter(c)) {
      const std::size_t start = at;
      while (at < excel.size() && (isLetter(excel[at]) || isDigit(excel[at]) || excel[at] == '.')) {
        ++at;
      }
      if (!isKnownWord(excel.substr(start, at - start))) return false;
    } else if (plain.find(c) != std::string_view::npos) {
      ++at;
    } else {
      return false;
    }
  }
  return !excel.empty();
}

}  // namespace quorin::host::calc
