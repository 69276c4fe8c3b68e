#include "host/calc/FunctionNames.h"

#include <array>
#include <string_view>
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

std::string excelFunctionName(const std::string& word) {
  const std::string upper = upperCase(word);
  for (const std::string_view origin : origins) {
    if (upper.starts_with(origin)) return upper.substr(origin.size());
  }
  for (const auto& [calc, excel] : renamed) {
    if (upper == calc) return std::string(excel);
  }
  return upper;
}

}  // namespace quorin::host::calc
