#include "host/calc/grammar/JoinedTruth.h"

namespace quorin::host::calc {

bool isJoined(std::string_view before, std::string_view behind) {
  static constexpr std::string_view blanks = " \n\r\t", tighter = "+-*/^%:!~", looser = "&=<>,;)";
  const std::size_t last = before.find_last_not_of(blanks);
  const std::size_t next = behind.find_first_not_of(blanks);
  const char left = last == std::string_view::npos ? '\0' : before[last];
  const char right = next == std::string_view::npos ? '\0' : behind[next];
  if (right != '\0' && looser.find(right) == std::string_view::npos) return false;
  if (tighter.find(left) != std::string_view::npos) return false;
  return left == '&' || right == '&';
}

std::string namedTruth(const std::string& truth) {
  return "IF(" + truth + ";\"TRUE\";\"FALSE\")";
}

std::string namedIfTruth(const std::string& cell) {
  return "IF(ISLOGICAL(" + cell + ");" + namedTruth(cell) + ";" + cell + ")";
}

}  // namespace quorin::host::calc
