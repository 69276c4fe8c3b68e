#include "host/calc/grammar/MadeArrays.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/calc/grammar/ReferenceText.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

struct Maker {
  std::string_view function;
  std::size_t rows, columns;  // the arguments that tell how many, from 0
};

constexpr std::array<Maker, 4> makers{Maker{"EXPAND", 1, 2}, Maker{"MUNIT", 0, 0},
                                      Maker{"RANDARRAY", 0, 1}, Maker{"SEQUENCE", 0, 1}};

const Maker* makerOf(std::string_view function) {
  const auto* const found = std::find_if(
      makers.begin(), makers.end(), [&](const Maker& one) { return one.function == function; });
  return found == makers.end() ? nullptr : found;
}

// So many; the argument, which is there, is written as what it comes to.
double sizeIn(CallArgument& argument, const ExpressionContext& context) {
  std::optional<double> number = numberIn(argument.calc);
  if (!number) {
    const auto told = context.told(argument.excel);
    if (!told)
      throw SpreadsheetError(eventErrors::badParameter,
                             "The expression makes an array of an unknown size");
    if (const auto* value = std::get_if<double>(&*told)) number = *value;
    if (const auto* value = std::get_if<bool>(&*told)) number = *value ? 1 : 0;
    if (const auto* value = std::get_if<std::string>(&*told)) number = numberIn(*value);
    if (std::holds_alternative<Blank>(*told)) number = 0;
    const auto* error = std::get_if<CellError>(&*told);
    argument.calc = error != nullptr ? error->text : number ? numberText(*number) : "#VALUE!";
  }
  return number && *number >= 1 ? std::floor(*number) : 1;
}

}  // namespace

bool makesArray(std::string_view function) {
  return makerOf(function) != nullptr;
}

ArrayCall madeArray(std::string_view function, std::vector<CallArgument>& arguments,
                    const std::vector<ArrayShape>& shapes, const ExpressionContext& context) {
  const Maker& maker = *makerOf(function);
  const ArrayShape given = maker.rows > 0 ? shapes.front() : ArrayShape();
  const auto size = [&](std::size_t at, double otherwise) {
    const bool isThere = at < arguments.size() && !trimmed(arguments[at].calc).empty();
    return isThere ? sizeIn(arguments[at], context) : otherwise;
  };
  const double rows = size(maker.rows, given.rows);
  const ArrayShape shape{rows,
                         maker.columns == maker.rows ? rows : size(maker.columns, given.columns)};
  return {shape, shape.count()};
}

}  // namespace quorin::host::calc
