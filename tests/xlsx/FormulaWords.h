// The words of a formula in one spelling, so that formulas that say the same compare equal however
// they are written: blanks without meaning, the case of names, quotes around sheet names, the form
// of numbers, prefixes of newer functions, where another workbook lies. For tests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorin::xlsx {

// `externals` are the file names behind [1], [2] …; pass none where workbooks go by name.
std::vector<std::string> formulaWords(std::string_view formula,
                                      const std::vector<std::string>& externals = {});

}  // namespace quorin::xlsx
