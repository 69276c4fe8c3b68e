#include "host/calc/grammar/FoundCells.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/Address.h"
#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {
namespace {

// Without its sign, for OFFSET counts in both directions.
std::optional<double> numberOf(const std::string& excel, const ExpressionContext& context) {
  const auto told = context.told(excel);
  if (!told) return std::nullopt;
  if (const auto* value = std::get_if<double>(&*told)) return std::abs(*value);
  if (const auto* value = std::get_if<bool>(&*told)) return *value ? 1 : 0;
  if (const auto* value = std::get_if<std::string>(&*told)) {
    const auto number = numberIn(*value);
    return number ? std::abs(*number) : 0;
  }
  return 0;  // a blank, or an error, of which nothing else comes
}

bool isGiven(std::span<const CallArgument> arguments, std::size_t at) {
  return at < arguments.size() && !trimmed(arguments[at].calc).empty();
}

// What the argument comes to, the largest where it has several values.
std::optional<double> largestOf(const CallArgument& argument, const ArrayShape& shape,
                                const ExpressionContext& context) {
  if (const auto number = numberIn(argument.calc)) return std::abs(*number);
  if (shape.count() <= 1 || argument.excel.empty()) return numberOf(argument.excel, context);
  return numberOf("MAX(" + argument.excel + ")", context);
}

// A place in a list, which is never 0: the argument is a call of such a function and nothing else.
bool isPlace(std::string_view excel) {
  static constexpr std::array<std::string_view, 6> functions{"COLUMN(", "COLUMNS(", "MATCH(",
                                                             "ROW(",    "ROWS(",    "XMATCH("};
  const std::string capitals = upperCase(trimmed(excel));
  const bool begins = std::any_of(functions.begin(), functions.end(),
                                  [&](std::string_view one) { return capitals.starts_with(one); });
  int depth = 0;
  char quote = '\0';
  for (std::size_t at = 0; begins && at < capitals.size(); ++at) {
    const char c = capitals[at];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(') {
      ++depth;
    } else if (c == ')' && --depth == 0) {
      return at + 1 == capitals.size();
    }
  }
  return false;
}

ArrayShape ofOffset(OfficeWork& work, std::span<const CallArgument> arguments,
                    std::span<const ArrayShape> shapes, const ExpressionContext& context) {
  const auto size = [&](std::size_t at, double otherwise, double most) {
    if (!isGiven(arguments, at)) return otherwise;
    return std::clamp(largestOf(arguments[at], shapes[at], context).value_or(most), 1.0, most);
  };
  const ArrayShape one{size(3, shapes[0].rows, maxRow), size(4, shapes[0].columns, maxColumn)};
  ArrayOperands places;
  for (const ArrayShape& each : shapes.subspan(1)) places.add(each);
  const ArrayShape& all = places.shape();
  if (all.count() <= 1) return one;
  constexpr double mostFilled = 1e6;  // that are read at all
  constexpr double times = 0.25;      // for a cell, as on average half of them are in each place
  work.searches.push_back(
      {.times = times * all.count(), .items = std::min(one.count(), mostFilled)});
  return all;
}

// All of a range's rows or columns where the number is 0.
ArrayShape ofIndex(std::span<const CallArgument> arguments, std::span<const ArrayShape> shapes,
                   const ExpressionContext& context) {
  constexpr double few = 1'000;  // not worth a question
  const ArrayShape& whole = shapes[0];
  const auto lines = [&](std::size_t at, double all) {
    if (!isGiven(arguments, at)) return all;
    if (shapes[at].count() > 1) return shapes[at].count();
    if (const auto number = numberIn(arguments[at].calc)) return std::abs(*number) < 1 ? all : 1;
    if (whole.count() <= few) return all;
    if (isPlace(arguments[at].excel)) return 1.0;
    return numberOf(arguments[at].excel, context).value_or(0) < 1 ? all : 1;
  };
  const bool alongRow = arguments.size() == 2 && whole.rows <= 1;
  const bool alongColumn = arguments.size() == 2 && whole.columns <= 1;
  if (alongRow) return {1, lines(1, whole.columns)};
  if (alongColumn) return {lines(1, whole.rows), 1};
  return {lines(1, whole.rows), lines(2, whole.columns)};
}

}  // namespace

bool findsCells(std::string_view function) {
  return function == "OFFSET" || function == "INDEX";
}

ArrayShape foundCells(OfficeWork& work, std::string_view function,
                      std::span<const CallArgument> arguments, std::span<const ArrayShape> shapes,
                      const ExpressionContext& context) {
  return function == "OFFSET" ? ofOffset(work, arguments, shapes, context)
                              : ofIndex(arguments, shapes, context);
}

ArrayShape sizeOf(const std::string& excel, const ExpressionContext& context) {
  const auto lines = [&](const char* function, int most) {
    const std::string asked = excel.empty() ? excel : function + ("(" + excel + ")");
    return std::clamp(numberOf(asked, context).value_or(most), 1.0, double(most));
  };
  return {lines("ROWS", maxRow), lines("COLUMNS", maxColumn)};
}

}  // namespace quorin::host::calc
