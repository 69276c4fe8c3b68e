#include "host/calc/CalcExpression.h"

#include <algorithm>

#include "host/calc/ExpressionWriter.h"
#include "host/calc/HarmlessFunctions.h"

namespace quorin::host::calc {

std::optional<CalcExpression> calcExpression(std::string_view excel,
                                             const ExpressionContext& context) {
  constexpr std::string_view blanks = " \n\r\t";
  excel.remove_prefix(std::min(excel.find_first_not_of(blanks), excel.size()));
  excel = excel.substr(0, excel.find_last_not_of(blanks) + 1);
  if (excel.starts_with('=')) excel.remove_prefix(1);
  CalcExpression result;
  WrittenNames names;
  try {
    ExpressionWriter writer(excel, context, result.reach, names);
    result.text = writer.run();
    result.single = writer.isSingle();
    result.crossed = names.crossed;
    if (!names.bindings.empty()) result.text = "LET(" + names.bindings + result.text + ")";
  } catch (const Malformed&) {
    return std::nullopt;
  }
  if (!names.reaching.empty()) throw SpreadsheetError(onlyWhenAsked, reachText(names.reaching));
  return result;
}

void refuseLargeArrays(const CalcExpression& expression) {
  constexpr double most = 4e6;  // these take the office up to some seconds
  if (expression.crossed > most) {
    throw SpreadsheetError(-50, "The expression makes arrays of too many cells");
  }
}

}  // namespace quorin::host::calc
