#include "host/model/Answers.h"

#include <limits>

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

struct ValueAnswer {
  Descriptor operator()(Blank) const { return Descriptor::text({}); }
  Descriptor operator()(bool flag) const { return Descriptor::boolean(flag); }
  Descriptor operator()(double number) const { return Descriptor::real(number); }
  Descriptor operator()(std::string text) const { return Descriptor::text(std::move(text)); }
  Descriptor operator()(const CellError&) const { return Descriptor::missingValue(); }
};

template <typename T, typename Answer>
Descriptor gridAnswer(Grid<T> grid, Answer answer) {
  if (grid.cells.size() == 1) return answer(std::move(grid.cells.front()));
  Descriptor::Items rows;
  rows.reserve(static_cast<std::size_t>(grid.rows));
  auto cell = grid.cells.begin();
  for (int row = 0; row < grid.rows; ++row) {
    Descriptor::Items items;
    items.reserve(static_cast<std::size_t>(grid.columns));
    for (int column = 0; column < grid.columns; ++column)
      items.push_back(answer(std::move(*cell++)));
    rows.push_back(Descriptor::list(std::move(items)));
  }
  return Descriptor::list(std::move(rows));
}

}  // namespace

Descriptor valueAnswer(CellValue value) {
  return std::visit(ValueAnswer(), std::move(value));
}

Descriptor valueAnswer(Grid<CellValue> grid) {
  return gridAnswer(std::move(grid), [](CellValue cell) { return valueAnswer(std::move(cell)); });
}

Descriptor formulaAnswer(Grid<CellValue> grid) {
  return gridAnswer(std::move(grid), [](CellValue cell) {
    if (auto* const error = std::get_if<CellError>(&cell))
      return Descriptor::text(std::move(error->text));
    return valueAnswer(std::move(cell));
  });
}

Descriptor textAnswer(Grid<std::string> grid) {
  return gridAnswer(std::move(grid),
                    [](std::string text) { return Descriptor::text(std::move(text)); });
}

Descriptor countAnswer(long long count) {
  if (count > std::numeric_limits<std::int32_t>::max())
    return Descriptor::real(static_cast<double>(count));
  return Descriptor::integer(static_cast<std::int32_t>(count));
}

Resolved objectAnswer(std::optional<RangeRef> range) {
  if (!range) return Descriptor::missingValue();
  return Object(RangeObject{std::move(*range)});
}

Resolved objectAnswer(std::optional<SheetRef> sheet) {
  if (!sheet) return Descriptor::missingValue();
  return Object(SheetObject{std::move(*sheet)});
}

}  // namespace quorin::host
