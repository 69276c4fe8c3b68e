#include "host/calc/grammar/CallReach.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/Address.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/Words.h"

namespace quorin::host::calc {
namespace {

// A number that stands there, with a sign perhaps.
std::optional<double> constant(std::string_view text) {
  constexpr std::size_t longest = 9;
  text = trimmed(text);
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const bool digits =
      std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (text.empty() || text.size() > longest || !digits) return std::nullopt;
  const double value = std::stod(std::string(text));
  return negative ? -value : value;
}

// The whole number that an argument comes to; nothing where that is not known.
std::optional<int> numberOf(const CallArgument& argument, const ExpressionContext& context) {
  constexpr double most = 2e6;  // more than a sheet has rows
  std::optional<double> value = constant(argument.calc);
  if (!value && context.placesAreAsked) {
    const auto told = context.told(argument.excel);
    const auto* number = told ? std::get_if<double>(&*told) : nullptr;
    if (number != nullptr) value = *number;
    if (told && std::holds_alternative<CellError>(*told)) return 1;  // nothing else comes of it
  }
  if (!value || !(std::abs(*value) <= most) || *value != std::floor(*value)) return std::nullopt;
  return static_cast<int>(*value);
}

// The one range that an argument is.
RangeRef* rangeOf(Reach& reach, const CallArgument& argument) {
  return argument.isCells && argument.upTo == argument.from + 1 ? &reach.cells[argument.from]
                                                                : nullptr;
}

// Of the range's rows or columns that one, from 1; 0 is all of them.
void keepOne(Area& area, Axis axis, int number) {
  if (number < 1 || number > countOn(area, axis)) return;
  firstOn(area, axis) += number - 1;
  lastOn(area, axis) = firstOn(area, axis);
}

void leaveOutOfIndex(Reach& reach, std::span<const CallArgument> arguments,
                     const ExpressionContext& context) {
  RangeRef* const range = rangeOf(reach, arguments.front());
  if (range == nullptr || arguments.size() < 2 || arguments.size() > 3) return;
  Area& area = range->areas.front();
  const bool isRow = arguments.size() == 2 && rowCount(area) == 1;
  const Area whole = area;
  constexpr std::array<Axis, 2> both{Axis::rows, Axis::columns};
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const Axis axis = isRow ? Axis::columns : both[i - 1];
    if (trimmed(arguments[i].calc).empty() || countOn(whole, axis) == 1) continue;
    if (const auto number = numberOf(arguments[i], context)) keepOne(area, axis, *number);
  }
}

// Of VLOOKUP and HLOOKUP: the column or row that is searched and the one that answers.
void leaveOutOfLookup(Reach& reach, std::span<const CallArgument> arguments,
                      const ExpressionContext& context, Axis axis) {
  if (arguments.size() < 3) return;
  RangeRef* const range = rangeOf(reach, arguments[1]);
  if (range == nullptr || countOn(range->areas.front(), axis) <= 2) return;
  const auto number = numberOf(arguments[2], context);
  if (!number) return;
  RangeRef answers = *range;
  keepOne(answers.areas.front(), axis, *number);
  keepOne(range->areas.front(), axis, 1);
  const bool isThere = *number > 1 && countOn(answers.areas.front(), axis) == 1;
  if (isThere) reach.cells.push_back(std::move(answers));
}

// Where OFFSET's cells are is known only when each of its numbers is.
bool leaveOutOfOffset(Reach& reach, std::span<const CallArgument> arguments,
                      const ExpressionContext& context) {
  RangeRef* const range = rangeOf(reach, arguments.front());
  if (range == nullptr || arguments.size() < 3 || arguments.size() > 5) return false;
  Area area = range->areas.front();
  std::array<int, 4> numbers{0, 0, rowCount(area), columnCount(area)};
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (trimmed(arguments[i].calc).empty()) continue;
    const auto number = numberOf(arguments[i], context);
    if (!number) return false;
    numbers[i - 1] = *number;
  }
  const auto [down, right, rows, columns] = numbers;
  if (rows < 1 || columns < 1) return false;  // counted the other way in Excel
  area = {std::max(1, area.firstRow + down), std::max(1, area.firstColumn + right),
          std::min(maxRow, area.firstRow + down + rows - 1),
          std::min(maxColumn, area.firstColumn + right + columns - 1)};
  const bool isThere = area.firstRow <= area.lastRow && area.firstColumn <= area.lastColumn;
  range->areas.front() = isThere ? area : Area{1, 1, 1, 1};
  return true;
}

// Of these the first cell is as good as all.
bool asksWhereAlone(std::string_view name) {
  static constexpr std::array<std::string_view, 5> names{"AREAS", "COLUMN", "COLUMNS", "ROW",
                                                         "ROWS"};
  return contains(names, name);
}

}  // namespace

void addFunction(Reach& reach, std::string_view name) {
  static constexpr std::array<std::string_view, 3> traits{"AGGREGATE", "ISFORMULA", "SUBTOTAL"};
  static constexpr std::array<std::string_view, 4> contents{"FORMULA", "GETPIVOTDATA",
                                                            "MULTIPLE.OPERATIONS", "TABLE"};
  if (name == "INDIRECT") reach.anywhere = true;
  if (contains(traits, name)) reach.traits = true;
  if (contains(contents, name)) reach.contents = true;
}

void addBeyond(Reach& reach, std::string_view name, std::size_t from) {
  const bool fillsShape = name == "SUMIF" || name == "AVERAGEIF";
  if (!fillsShape && name != "LOOKUP") return;
  int rows = 1, columns = 1;
  for (std::size_t i = from; i < reach.cells.size(); ++i) {
    rows = std::max(rows, rowCount(reach.cells[i].areas.front()));
    columns = std::max(columns, columnCount(reach.cells[i].areas.front()));
  }
  for (std::size_t i = from, end = reach.cells.size(); i < end; ++i) {
    RangeRef beyond = reach.cells[i];
    Area& area = beyond.areas.front();
    const bool isColumn = rowCount(area) > 1;
    const int more = std::max(rows, columns) - 1;
    const int down = fillsShape ? rows - 1 : isColumn ? more : 0;
    const int right = fillsShape ? columns - 1 : isColumn ? 0 : more;
    area.lastRow = std::min(maxRow, area.lastRow + down);
    area.lastColumn = std::min(maxColumn, area.lastColumn + right);
    if (beyond != reach.cells[i]) reach.cells.push_back(std::move(beyond));
  }
}

void leaveOut(Reach& reach, std::string_view name, std::span<const CallArgument> arguments,
              const ExpressionContext& context) {
  if (name == "INDEX") {
    leaveOutOfIndex(reach, arguments, context);
  } else if (name == "VLOOKUP" || name == "HLOOKUP") {
    leaveOutOfLookup(reach, arguments, context, name == "VLOOKUP" ? Axis::columns : Axis::rows);
  } else if (name == "OFFSET") {
    if (!leaveOutOfOffset(reach, arguments, context)) reach.shifts = true;
  } else if (asksWhereAlone(name)) {
    if (RangeRef* const range = rangeOf(reach, arguments.front())) {
      Area& area = range->areas.front();
      keepOne(area, Axis::rows, 1);
      keepOne(area, Axis::columns, 1);
    }
  }
}

}  // namespace quorin::host::calc
