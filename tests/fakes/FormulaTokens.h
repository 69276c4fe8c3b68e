// The words of a formula in Excel's English grammar, for the spreadsheet of the tests.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::fakes {

struct FormulaToken {
  enum class Kind { number, text, error, boolean, reference, name, function, sign, junk };
  Kind kind;
  std::string spelling;  // as in the formula; of a text without its quotes
  std::optional<std::string> book = {}, sheet = {};  // the prefix of a reference or name
  std::vector<host::Area> areas = {};                // of a reference
  std::size_t begin = 0, end = 0;  // of the address or word itself, behind its prefix
};

// Blanks are left out; what is no formula word is one token of junk at the end.
std::vector<FormulaToken> formulaTokens(std::string_view formula);

// The formula with its addresses in R1C1 notation, as seen from a cell.
std::string formulaInR1C1(const std::string& formula, int row, int column);

}  // namespace quorin::fakes
