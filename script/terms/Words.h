// Words and codes as the language spells and compares them: ASCII letters without regard to case.
// Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kit/value/FourCharCode.h"

namespace quorin::script {

inline char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = lowerCase(c);
  return lower;
}

inline bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

inline bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

inline bool isWordCharacter(char c) {
  return isLetter(c) || isDigit(c) || c == '_';
}

// The code whose bytes are these four characters.
inline FourCharCode codeOf(std::string_view fourBytes) {
  FourCharCode code = 0;
  for (const char c : fourBytes) code = (code << 8) | static_cast<unsigned char>(c);
  return code;
}

// The parts between blanks; at least one part, which may be empty.
inline std::vector<std::string> splitWords(std::string_view text) {
  std::vector<std::string> words;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] != ' ') continue;
    if (i > start || words.empty()) words.emplace_back(text.substr(start, i - start));
    start = i + 1;
  }
  return words;
}

}  // namespace quorin::script
