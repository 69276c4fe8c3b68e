#include "script/values/TextComparison.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <utf8proc.h>

#include "script/terms/Words.h"
#include "script/values/TextOperations.h"

namespace quorin::script {
namespace {

struct Folding {
  bool foldCase = true;
  bool stripMarks = false;
};

bool isASCII(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

std::string folded(std::string_view character, const Folding& folding) {
  if (character.size() == 1) {
    return std::string(1, folding.foldCase ? lowerCase(character[0]) : character[0]);
  }
  int options = UTF8PROC_STABLE;
  options |= folding.stripMarks ? UTF8PROC_DECOMPOSE | UTF8PROC_STRIPMARK : UTF8PROC_COMPOSE;
  if (folding.foldCase) options |= UTF8PROC_CASEFOLD;
  utf8proc_uint8_t* mapped = nullptr;
  const utf8proc_ssize_t size =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(character.data()),
                   static_cast<utf8proc_ssize_t>(character.size()), &mapped,
                   static_cast<utf8proc_option_t>(options));
  if (size < 0) return std::string(character);
  std::string result(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(size));
  std::free(mapped);
  return result;
}

utf8proc_int32_t firstCodePoint(std::string_view character) {
  utf8proc_int32_t point = -1;
  utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(character.data()),
                   static_cast<utf8proc_ssize_t>(character.size()), &point);
  return point;
}

enum class Sort { space, punctuation, symbol, digit, letter };

Sort sortOf(std::string_view character) {
  const utf8proc_int32_t point = firstCodePoint(character);
  if (point < 0) return Sort::symbol;
  switch (utf8proc_category(point)) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
    case UTF8PROC_CATEGORY_CC:
      return Sort::space;
    case UTF8PROC_CATEGORY_PC:
    case UTF8PROC_CATEGORY_PD:
    case UTF8PROC_CATEGORY_PS:
    case UTF8PROC_CATEGORY_PE:
    case UTF8PROC_CATEGORY_PI:
    case UTF8PROC_CATEGORY_PF:
    case UTF8PROC_CATEGORY_PO:
      return Sort::punctuation;
    case UTF8PROC_CATEGORY_ND:
      return Sort::digit;
    case UTF8PROC_CATEGORY_SM:
    case UTF8PROC_CATEGORY_SC:
    case UTF8PROC_CATEGORY_SK:
    case UTF8PROC_CATEGORY_SO:
      return Sort::symbol;
    default:
      return Sort::letter;
  }
}

bool isHyphen(std::string_view character) {
  const utf8proc_int32_t point = firstCodePoint(character);
  return point == '-' || (point >= 0x2010 && point <= 0x2015);
}

bool isIgnored(std::string_view character, const TextRules& rules) {
  if (rules.ignoreHyphens && isHyphen(character)) return true;
  if (rules.ignoreWhiteSpace && sortOf(character) == Sort::space) return true;
  return rules.ignorePunctuation && !isHyphen(character) && sortOf(character) == Sort::punctuation;
}

bool ignoresCharacters(const TextRules& rules) {
  return rules.ignoreHyphens || rules.ignoreWhiteSpace || rules.ignorePunctuation;
}

std::vector<std::string> units(std::string_view text, const TextRules& rules,
                               const Folding& folding) {
  std::vector<std::string> result;
  for (const TextSpan& span : textElements(text, TextUnit::character)) {
    const std::string_view character = text.substr(span.begin, span.end - span.begin);
    if (!isIgnored(character, rules)) result.push_back(folded(character, folding));
  }
  return result;
}

Folding foldingOf(const TextRules& rules) {
  return {rules.ignoreCase, rules.ignoreDiacriticals};
}

// Plain bytes can be compared when nothing but the case of ASCII letters is in question.
bool isSimple(std::string_view a, std::string_view b, const TextRules& rules) {
  return !ignoresCharacters(rules) && isASCII(a) && isASCII(b);
}

bool simpleEquals(std::string_view a, std::string_view b, const TextRules& rules) {
  if (a.size() != b.size()) return false;
  if (!rules.ignoreCase) return a == b;
  return std::equal(a.begin(), a.end(), b.begin(),
                    [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

int compareUnits(const std::vector<std::string>& a, const std::vector<std::string>& b,
                 bool numeric) {
  std::size_t i = 0, j = 0;
  const auto digits = [](const std::vector<std::string>& from, std::size_t at) {
    std::string run;
    while (at < from.size() && from[at].size() == 1 && from[at][0] >= '0' && from[at][0] <= '9') {
      run += from[at++];
    }
    return run;
  };
  while (i < a.size() && j < b.size()) {
    if (numeric) {
      const std::string x = digits(a, i), y = digits(b, j);
      if (!x.empty() && !y.empty()) {
        i += x.size();
        j += y.size();
        const std::string p = x.substr(std::min(x.find_first_not_of('0'), x.size()));
        const std::string q = y.substr(std::min(y.find_first_not_of('0'), y.size()));
        if (p.size() != q.size()) return p.size() < q.size() ? -1 : 1;
        if (p != q) return p < q ? -1 : 1;
        continue;
      }
    }
    if (a[i] != b[j]) {
      const Sort x = sortOf(a[i]), y = sortOf(b[j]);
      if (x != y) return x < y ? -1 : 1;
      return a[i] < b[j] ? -1 : 1;
    }
    ++i;
    ++j;
  }
  if (i < a.size()) return 1;
  return j < b.size() ? -1 : 0;
}

bool matchesAt(const std::vector<std::string>& text, std::size_t at,
               const std::vector<std::string>& part) {
  return at + part.size() <= text.size() &&
         std::equal(part.begin(), part.end(), text.begin() + static_cast<std::ptrdiff_t>(at));
}

}  // namespace

bool textsDifferInLength(std::string_view a, std::string_view b, const TextRules& rules) {
  return a.size() != b.size() && !rules.numericStrings && isSimple(a, b, rules);
}

bool textEquals(std::string_view a, std::string_view b, const TextRules& rules) {
  if (isSimple(a, b, rules) && !rules.numericStrings) return simpleEquals(a, b, rules);
  return compareUnits(units(a, rules, foldingOf(rules)), units(b, rules, foldingOf(rules)),
                      rules.numericStrings) == 0;
}

int textOrder(std::string_view a, std::string_view b, const TextRules& rules) {
  // Letters first, then their marks, then their case, as a dictionary orders words.
  const Folding base{true, true};
  if (const int order =
          compareUnits(units(a, rules, base), units(b, rules, base), rules.numericStrings)) {
    return order;
  }
  if (!rules.ignoreDiacriticals) {
    const Folding marks{true, false};
    if (const int order =
            compareUnits(units(a, rules, marks), units(b, rules, marks), rules.numericStrings)) {
      return order;
    }
  }
  if (rules.ignoreCase) return 0;
  const Folding exact{false, rules.ignoreDiacriticals};
  return -compareUnits(units(a, rules, exact), units(b, rules, exact), rules.numericStrings);
}

bool textContains(std::string_view text, std::string_view part, const TextRules& rules) {
  if (isSimple(text, part, rules)) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [&](char x, char y) {
                         return rules.ignoreCase ? lowerCase(x) == lowerCase(y) : x == y;
                       }) != text.end() ||
           part.empty();
  }
  // The text may be long: only as many of its characters are held as the part has.
  const auto sought = units(part, rules, foldingOf(rules));
  std::deque<std::string> held;
  bool found = sought.empty();
  forEachCharacter(text, [&](TextSpan span) {
    const std::string_view character = text.substr(span.begin, span.end - span.begin);
    if (found || isIgnored(character, rules)) return !found;
    held.push_back(folded(character, foldingOf(rules)));
    if (held.size() > sought.size()) held.pop_front();
    found = held.size() == sought.size() && std::equal(held.begin(), held.end(), sought.begin());
    return !found;
  });
  return found;
}

bool textBeginsWith(std::string_view text, std::string_view part, const TextRules& rules) {
  return matchesAt(units(text, rules, foldingOf(rules)), 0, units(part, rules, foldingOf(rules)));
}

bool textEndsWith(std::string_view text, std::string_view part, const TextRules& rules) {
  const auto whole = units(text, rules, foldingOf(rules));
  const auto sought = units(part, rules, foldingOf(rules));
  return sought.size() <= whole.size() && matchesAt(whole, whole.size() - sought.size(), sought);
}

TextSearch::TextSearch(std::string_view text, const TextRules& rules) : rules_(rules) {
  for (const TextSpan& span : textElements(text, TextUnit::character)) {
    units_.push_back(folded(text.substr(span.begin, span.end - span.begin), foldingOf(rules)));
    offsets_.push_back(span.begin);
  }
  offsets_.push_back(text.size());
}

std::vector<TextSearch::Found> TextSearch::all(const std::vector<std::string>& parts) const {
  std::vector<std::vector<std::string>> sought;
  for (const std::string& part : parts) {
    if (!part.empty()) sought.push_back(units(part, rules_, foldingOf(rules_)));
  }
  std::vector<Found> found;
  for (std::size_t at = 0; at < units_.size();) {
    std::size_t longest = 0;
    for (const auto& part : sought) {
      if (part.size() > longest && matchesAt(units_, at, part)) longest = part.size();
    }
    if (longest > 0) found.push_back({offsets_[at], offsets_[at + longest]});
    at += longest > 0 ? longest : 1;
  }
  return found;
}

}  // namespace quorin::script
