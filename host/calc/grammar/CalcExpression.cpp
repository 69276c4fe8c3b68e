#include "host/calc/grammar/CalcExpression.h"

#include <algorithm>

#include "host/calc/grammar/ExpressionWriter.h"
#include "host/calc/grammar/HarmlessFunctions.h"

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
    result.work = std::move(names.work);
    if (!names.bindings.empty()) result.text = "LET(" + names.bindings + result.text + ")";
  } catch (const Malformed&) {
    return std::nullopt;
  }
  if (!names.reaching.empty()) throw SpreadsheetError(onlyWhenAsked, reachText(names.reaching));
  return result;
}

}  // namespace quorin::host::calc
