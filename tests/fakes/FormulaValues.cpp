#include "tests/fakes/FormulaValues.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>

#include "kit/value/RealText.h"

namespace quorin::fakes::formula {

using host::Blank;
using host::CellError;
using host::CellValue;

CellValue error(const char* text) {
  return CellError{text};
}
bool isError(const CellValue& value) {
  return std::holds_alternative<CellError>(value);
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

std::optional<double> parsedNumber(const std::string& text) {
  return readReal(text);
}

CellValue number(const CellValue& value) {
  if (std::holds_alternative<Blank>(value)) return 0.0;
  if (const bool* flag = std::get_if<bool>(&value)) return *flag ? 1.0 : 0.0;
  if (const std::string* text = std::get_if<std::string>(&value)) {
    const auto parsed = parsedNumber(*text);
    return parsed ? CellValue(*parsed) : error("#VALUE!");
  }
  return value;
}

std::string text(const CellValue& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag ? "TRUE" : "FALSE";
  if (const std::string* string = std::get_if<std::string>(&value)) return *string;
  if (const double* real = std::get_if<double>(&value)) {
    std::array<char, 32> digits;
    const int length = std::snprintf(digits.data(), digits.size(), "%.15g", *real);
    return std::string(digits.data(), static_cast<std::size_t>(length));
  }
  return {};
}

CellValue finite(double result) {
  return std::isfinite(result) ? CellValue(result) : error("#NUM!");
}

namespace {

// Numbers come before text, text before booleans; a blank takes the kind of its partner.
int order(CellValue a, CellValue b) {
  const auto fill = [](CellValue& blank, const CellValue& other) {
    if (!std::holds_alternative<Blank>(blank)) return;
    if (std::holds_alternative<std::string>(other))
      blank = std::string();
    else
      blank = std::holds_alternative<bool>(other) ? CellValue(false) : CellValue(0.0);
  };
  fill(a, b);
  fill(b, a);
  const auto rank = [](const CellValue& value) {
    return std::holds_alternative<double>(value) ? 0 : std::holds_alternative<bool>(value) ? 2 : 1;
  };
  if (rank(a) != rank(b)) return rank(a) < rank(b) ? -1 : 1;
  if (const double* x = std::get_if<double>(&a)) {
    const double y = std::get<double>(b);
    return *x < y ? -1 : *x > y ? 1 : 0;
  }
  if (const bool* x = std::get_if<bool>(&a)) return *x - std::get<bool>(b);
  return upper(text(a)).compare(upper(text(b)));
}

}  // namespace

CellValue binary(const std::string& sign, const CellValue& left, const CellValue& right) {
  if (isError(left)) return left;
  if (isError(right)) return right;
  if (sign == "&") return text(left) + text(right);
  if (sign == "=") return order(left, right) == 0;
  if (sign == "<>") return order(left, right) != 0;
  if (sign == "<") return order(left, right) < 0;
  if (sign == ">") return order(left, right) > 0;
  if (sign == "<=") return order(left, right) <= 0;
  if (sign == ">=") return order(left, right) >= 0;
  const CellValue a = number(left), b = number(right);
  if (isError(a)) return a;
  if (isError(b)) return b;
  const double x = std::get<double>(a), y = std::get<double>(b);
  if (sign == "+") return finite(x + y);
  if (sign == "-") return finite(x - y);
  if (sign == "*") return finite(x * y);
  if (sign == "^") return finite(std::pow(x, y));
  return y == 0 ? error("#DIV/0!") : finite(x / y);
}

}  // namespace quorin::fakes::formula
