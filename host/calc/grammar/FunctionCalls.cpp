#include "host/calc/grammar/FunctionCalls.h"

#include <algorithm>
#include <array>

#include "host/Address.h"
#include "host/calc/grammar/CellCall.h"
#include "host/calc/grammar/CellErrors.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/Words.h"

namespace quorin::host::calc {
namespace {

// The text that is shown, and not the address with it, which Calc tells as a second value.
std::optional<std::string> linkText(const FunctionCall& call) {
  const std::string& shown = call.parts.back().calc;
  if (call.parts.size() > 2 || trimmed(shown).empty()) return std::nullopt;
  return "(" + shown + ")";
}

// The range that is the only argument, as it stands.
const RangeRef* onlyRange(const FunctionCall& call) {
  const bool only = call.parts.size() == 1 && call.parts[0].isCells && call.cells.size() == 1;
  return only ? &call.cells[0] : nullptr;
}

// Of a range Excel takes the first cell.
std::optional<std::string> ofFirstCell(const FunctionCall& call) {
  const RangeRef* const range = onlyRange(call);
  if (range == nullptr || cellCount(range->areas) == 1) return std::nullopt;
  return call.name + "(INDEX(" + call.arguments + ";1;1))";
}

// Where the sheet stands in its workbook, from 1.
std::optional<std::string> sheetNumber(const ExpressionContext& context) {
  const auto& all = context.sheets;
  const auto own = std::find(all.begin(), all.end(), context.from.sheet);
  if (own == all.end()) return std::nullopt;
  return std::to_string(own - all.begin() + 1);
}

// The formulas of the cells, as one text or an array of them.
std::optional<std::string> formulaText(const FunctionCall& call, const ExpressionContext& context) {
  constexpr std::size_t mostCells = 1000, longestText = 1000;
  const RangeRef* const range = onlyRange(call);
  if (range == nullptr || !context.formulas) return std::nullopt;
  const auto formulas = context.formulas(*range);
  if (!formulas || formulas->cells.size() > mostCells) return std::nullopt;
  std::string text;
  for (int row = 0; row < formulas->rows; ++row) {
    for (int column = 0; column < formulas->columns; ++column) {
      const auto* formula = std::get_if<std::string>(&formulas->at(row, column));
      const bool isFormula = formula != nullptr && formula->starts_with('=');
      if (isFormula && formula->size() > longestText) return std::nullopt;
      if (!text.empty()) text += column == 0 ? '|' : ';';
      text += isFormula ? inQuotes(*formula) : "#N/A";
    }
  }
  return formulas->cells.size() == 1 ? text : "{" + text + "}";
}

}  // namespace

std::optional<std::string_view> readOnlyArgument(std::string_view text, std::size_t& position) {
  const std::size_t from = position + 1;
  int depth = 0;
  char quote = '\0';
  for (std::size_t at = from; at < text.size(); ++at) {
    const char c = text[at];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(' || c == '[' || c == '{') {
      ++depth;
    } else if (depth > 0) {
      if (c == ')' || c == ']' || c == '}') --depth;
    } else if (c == ')') {
      position = at + 1;
      return text.substr(from, at - from);
    } else if (c == ',' || c == ';') {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::optional<std::string> writtenAnew(const FunctionCall& call, const ExpressionContext& context,
                                       Reach& reach) {
  if (call.name == "ERROR.TYPE") return errorTypeCall(call.arguments);
  if (call.name == "HYPERLINK") return linkText(call);
  if (call.name == "N" || call.name == "T") return ofFirstCell(call);
  if (call.name == "CELL") return cellCall(call, context, reach);
  if (call.name == "FORMULATEXT") {
    const auto text = formulaText(call, context);
    if (!text) reach.untold = true;
    return text;
  }
  if (!trimmed(call.arguments).empty()) return std::nullopt;
  if (call.name == "SHEET") return sheetNumber(context);
  if (call.name == "SHEETS" && !context.sheets.empty()) {
    return std::to_string(context.sheets.size());
  }
  return std::nullopt;
}

// The office would open a file that a text names, as '...'#$Sheet.A1 or, with line breaks in it as
// well, [...]Sheet!A1: of these nothing is left that is a reference. In the first the quotation
// mark becomes a blank, in a text with a "!" every bracket. Neither pattern looks at a character
// twice.
std::optional<std::string> keptInside(const std::string& argument) {
  const bool stands = argument.starts_with('"') && argument.find('"', 1) == argument.size() - 1;
  if (stands && argument.find_first_of("#[") == std::string::npos) return std::nullopt;
  if (trimmed(argument).empty()) return std::nullopt;
  constexpr const char* quote = "\"'\\s*#\"";
  constexpr const char* bracket = R"("(?:\A(?=[^!]*+!)|(?!\A)\G)([^\[]*+)\[")";
  return std::string("REGEX(REGEX(") + argument + ";" + quote + ";\" \";\"g\");" + bracket +
         ";\"$1 \";\"g\")";
}

bool givesTruth(std::string_view function) {
  static constexpr std::array<std::string_view, 17> names{
      "AND",    "EXACT",     "FALSE",     "ISBLANK", "ISERR",     "ISERROR",
      "ISEVEN", "ISFORMULA", "ISLOGICAL", "ISNA",    "ISNONTEXT", "ISNUMBER",
      "ISODD",  "ISREF",     "ISTEXT",    "NOT",     "OR"};
  return contains(names, function) || function == "TRUE" || function == "XOR";
}

bool givesOne(std::string_view function, bool ofSeveral) {
  // These make one value of all that they are given.
  static constexpr std::array<std::string_view, 29> ofAny{
      "AND",     "AVERAGE",    "AVERAGEA", "CHISQ.TEST", "CHITEST",
      "COLUMNS", "COUNT",      "COUNTA",   "F.TEST",     "FORECAST.LINEAR",
      "FTEST",   "MAX",        "MAXA",     "MEDIAN",     "MIN",
      "MINA",    "OR",         "PRODUCT",  "ROWS",       "STDEV",
      "SUM",     "SUMPRODUCT", "SUMSQ",    "T.TEST",     "TTEST",
      "TYPE",    "VAR",        "XOR",      "ZTEST"};
  // These give one value for one.
  static constexpr std::array<std::string_view, 40> ofOne{
      "ABS",       "CEILING", "CONCATENATE", "DATE",     "DAY",     "EXACT", "EXP",   "FIND",
      "FLOOR",     "HOUR",    "HYPERLINK",   "IF",       "IFERROR", "IFNA",  "INT",   "ISBLANK",
      "ISERR",     "ISERROR", "ISNA",        "ISNUMBER", "ISTEXT",  "LEFT",  "LEN",   "LN",
      "LOWER",     "MID",     "MOD",         "MONTH",    "NOT",     "POWER", "RIGHT", "ROUND",
      "ROUNDDOWN", "ROUNDUP", "SIGN",        "SQRT",     "TEXT",    "TRIM",  "UPPER", "YEAR"};
  return contains(ofAny, function) || (!ofSeveral && contains(ofOne, function));
}

}  // namespace quorin::host::calc
