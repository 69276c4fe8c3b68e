#include "host/calc/FunctionNames.h"

#include <array>
#include <utility>

#include "host/calc/ReferenceText.h"

namespace quorin::host::calc {
namespace {

// Prefixes of function names that only say where a function comes from.
constexpr std::array<std::string_view, 6> origins{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GET",
                                                  "COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GET",
                                                  "COM.MICROSOFT.",
                                                  "_XLFN._XLWS.",
                                                  "_XLFN.",
                                                  "_XLWS."};

// Functions that Excel knows by another name.
constexpr std::array<std::pair<std::string_view, std::string_view>, 5> renamed{{
    {"B", "BINOM.DIST.RANGE"},
    {"CEILING.XCL", "CEILING"},
    {"FLOOR.XCL", "FLOOR"},
    {"FORMULA", "FORMULATEXT"},
    {"SKEWP", "SKEW.P"},
}};

}  // namespace

void appendExcelFunctionName(std::string& text, std::string_view word) {
  const std::size_t start = text.size();
  text += word;
  bool mayHaveOrigin = false;
  for (std::size_t i = start; i < text.size(); ++i) {
    text[i] = upperCase(text[i]);
    mayHaveOrigin = mayHaveOrigin || text[i] == '.' || text[i] == '_';
  }
  const std::string_view name = std::string_view(text).substr(start);
  for (const std::string_view origin : origins) {
    if (!mayHaveOrigin || !name.starts_with(origin)) continue;
    text.erase(start, origin.size());
    return;
  }
  for (const auto& [calc, excel] : renamed) {
    if (name != calc) continue;
    text.replace(start, text.npos, excel);
    return;
  }
}

}  // namespace quorin::host::calc
