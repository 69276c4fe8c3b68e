// Comparing and searching text as `considering` and `ignoring` say. The unit is the character a
// reader sees, so "e" is not found inside an accented one. Pure functions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "script/values/TextRules.h"

namespace quorin::script {

bool textEquals(std::string_view a, std::string_view b, const TextRules& rules);

// True where their lengths alone tell that they are not equal.
bool textsDifferInLength(std::string_view a, std::string_view b, const TextRules& rules);
int textOrder(std::string_view a, std::string_view b, const TextRules& rules);  // <0, 0, >0
bool textContains(std::string_view text, std::string_view part, const TextRules& rules);
bool textBeginsWith(std::string_view text, std::string_view part, const TextRules& rules);
bool textEndsWith(std::string_view text, std::string_view part, const TextRules& rules);

// Finds any of several texts in one text, from front to back.
class TextSearch {
 public:
  TextSearch(std::string_view text, const TextRules& rules);
  struct Found {
    std::size_t begin = 0, end = 0;  // bytes of the text
  };
  // The places, one after the other, where one of the parts stands; at the same place the longest
  // part wins. Empty parts are never found.
  std::vector<Found> all(const std::vector<std::string>& parts) const;

 private:
  const TextRules& rules_;
  std::vector<std::string> units_;    // folded characters
  std::vector<std::size_t> offsets_;  // where each begins, and where the last one ends
};

}  // namespace quorin::script
