// CalcExpression: an Excel expression in Calc's own stored grammar. A pure function over text, the
// other way round from FormulaTranslator.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quorin::host::calc {

struct ExpressionContext {
  // The workbook whose sheets need no workbook in front.
  std::string book;
  // The file URL of another open workbook; nothing when there is none of that name.
  std::function<std::optional<std::string>(const std::string& book)> urlOf;
  // The sheet that references without one belong to; empty: the sheet of the cell itself.
  std::string sheet = {};
};

// Excel text, with or without "=", as Calc text without it. Commas and semicolons both separate
// arguments. Nothing when the text cannot be an expression: unbalanced brackets or quotes, an
// operator or an operand missing, or something Calc has no notion of (a spill reference A1#).
std::optional<std::string> calcExpression(std::string_view excel, const ExpressionContext& context);

}  // namespace quorin::host::calc
