#include "host/calc/ExcelTokens.h"

#include "host/calc/ReferenceText.h"

namespace quorin::host::calc {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool followedBy(std::string_view text, std::size_t position, std::string_view any) {
  return position < text.size() && any.find(text[position]) != std::string_view::npos;
}

}  // namespace

std::optional<std::string_view> readText(std::string_view text, std::size_t& position) {
  for (std::size_t at = position + 1; at < text.size(); ++at) {
    if (text[at] != '"') continue;
    if (followedBy(text, at + 1, "\"")) {
      ++at;
      continue;
    }
    const std::size_t start = position;
    position = at + 1;
    return text.substr(start, position - start);
  }
  return std::nullopt;
}

std::optional<std::string> readArray(std::string_view text, std::size_t& position) {
  std::string array = "{";
  std::size_t at = position + 1;
  while (at < text.size()) {
    const char c = text[at];
    if (c == '"') {
      const auto item = readText(text, at);
      if (!item) return std::nullopt;
      array += *item;
      continue;
    }
    if (c == '{' || c == '(') return std::nullopt;
    array += c == ',' ? ';' : c == ';' ? '|' : c;
    ++at;
    if (c == '}') {
      position = at;
      return array;
    }
  }
  return std::nullopt;
}

std::string_view readWord(std::string_view text, std::size_t& position) {
  const std::size_t start = position;
  const bool numeric = start < text.size() && (isDigit(text[start]) || text[start] == '.');
  std::size_t at = start;
  const auto isExponentSign = [&] {
    return numeric && followedBy(text, at, "+-") && followedBy(text, at - 1, "Ee");
  };
  while (at < text.size() && (isWordCharacter(text[at]) || isExponentSign())) ++at;
  position = at;
  return text.substr(start, at - start);
}

bool isNumber(std::string_view word) {
  std::size_t at = 0;
  const auto digits = [&] {
    const std::size_t start = at;
    while (at < word.size() && isDigit(word[at])) ++at;
    return at - start;
  };
  std::size_t count = digits();
  if (followedBy(word, at, ".")) {
    ++at;
    count += digits();
  }
  if (count == 0) return false;
  if (followedBy(word, at, "Ee")) {
    ++at;
    if (followedBy(word, at, "+-")) ++at;
    if (digits() == 0) return false;
  }
  return at == word.size();
}

}  // namespace quorin::host::calc
