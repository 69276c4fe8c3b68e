#include "host/calc/grammar/ExcelTokens.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {
namespace {

bool isNumeral(char c) {
  return c >= '0' && c <= '9';
}

bool hasAt(std::string_view text, std::size_t position, std::string_view any) {
  return position < text.size() && any.find(text[position]) != std::string_view::npos;
}

}  // namespace

std::optional<std::string_view> readText(std::string_view text, std::size_t& position) {
  for (std::size_t at = position + 1; at < text.size(); ++at) {
    if (text[at] != '"') continue;
    if (hasAt(text, at + 1, "\"")) {
      ++at;
      continue;
    }
    const std::size_t start = position;
    position = at + 1;
    return text.substr(start, position - start);
  }
  return std::nullopt;
}

namespace {

// The items of an array, in Calc's order of signs, and which of them are errors.
struct ArrayItems {
  std::string numbers = "{";  // with 0 for each error
  std::vector<std::string> items;
  std::vector<char> signs;  // behind each item

  void add(std::string item, char sign) {
    const bool isError = errorLiteral(item, 0).size() == item.size() && !item.empty();
    numbers += isError ? "0" : item;
    numbers += sign;
    items.push_back(isError ? std::move(item) : std::string());
    signs.push_back(sign);
  }

  // Calc has no errors in arrays: they are put in where a mask says so.
  std::string text() const {
    std::string result = numbers;
    std::vector<std::string> written{{}};
    for (const std::string& error : items) {
      if (std::find(written.begin(), written.end(), error) != written.end()) continue;
      written.push_back(error);
      std::string mask = "{";
      for (std::size_t i = 0; i < items.size(); ++i) {
        mask += items[i] == error ? '1' : '0';
        mask += signs[i];
      }
      result = "IF(" + mask + ";" + error + ";" + result + ")";
    }
    return result;
  }
};

}  // namespace

std::optional<std::string> readArray(std::string_view text, std::size_t& position) {
  constexpr std::string_view blanks = " \n\r\t", others = "+-#/!,;}?.";
  ArrayItems array;
  std::string item;
  std::size_t at = position + 1;
  while (at < text.size()) {
    const char c = text[at];
    if (c == '"') {
      const auto quoted = readText(text, at);
      if (!quoted) return std::nullopt;
      item += *quoted;
      continue;
    }
    const bool isBlank = blanks.find(c) != std::string_view::npos;
    if (!isBlank && !isWordCharacter(c) && others.find(c) == std::string_view::npos) {
      return std::nullopt;
    }
    ++at;
    if (c == ',' || c == ';' || c == '}') {
      array.add(std::exchange(item, {}), c == ',' ? ';' : c == ';' ? '|' : c);
    } else if (!isBlank) {
      item += c;
    }
    if (c == '}') {
      position = at;
      return array.text();
    }
  }
  return std::nullopt;
}

std::string_view readWord(std::string_view text, std::size_t& position) {
  const std::size_t start = position;
  const bool numeric = start < text.size() && (isNumeral(text[start]) || text[start] == '.');
  std::size_t at = start;
  const auto isExponentSign = [&] {
    return numeric && hasAt(text, at, "+-") && hasAt(text, at - 1, "Ee");
  };
  while (at < text.size() && (isWordCharacter(text[at]) || isExponentSign())) ++at;
  position = at;
  return text.substr(start, at - start);
}

bool isNumber(std::string_view word) {
  std::size_t at = 0;
  const auto digits = [&] {
    const std::size_t start = at;
    while (at < word.size() && isNumeral(word[at])) ++at;
    return at - start;
  };
  std::size_t count = digits();
  if (hasAt(word, at, ".")) {
    ++at;
    count += digits();
  }
  if (count == 0) return false;
  if (hasAt(word, at, "Ee")) {
    ++at;
    if (hasAt(word, at, "+-")) ++at;
    if (digits() == 0) return false;
  }
  return at == word.size();
}

}  // namespace quorin::host::calc
