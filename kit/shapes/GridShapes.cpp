#include "kit/shapes/GridShapes.h"

#include <algorithm>
#include <utility>

#include "kit/shapes/ErrorLiterals.h"

namespace quorin::BridgeShapes {

namespace {

using Array = JSONValue::Array;

bool isErrorText(const JSONValue& value) {
  const std::string* const text = value.string();
  return text &&
         std::find(errorLiterals.begin(), errorLiterals.end(), *text) != errorLiterals.end();
}

bool isEmptyContainer(const JSONValue& value) {
  return (value.array() && value.array()->empty()) || (value.object() && value.object()->empty());
}

// Without a value of its own, as error cells are.
bool isVoid(const JSONValue& value) {
  return value.isNull() || (value.string() && value.string()->empty());
}

// Moves the value; braces would copy it, and compilers differ on braces around a list.
Array listOf(JSONValue value) {
  Array list;
  list.push_back(std::move(value));
  return list;
}

bool hasSize(const Array& list, std::int64_t size) {
  return std::cmp_equal(list.size(), size);
}

// The values that Excel left in a column; none when they do not come one a row.
std::optional<Array> survivors(JSONValue value2) {
  if (!value2.array()) return listOf(std::move(value2));
  Array left;
  for (JSONValue& item : *value2.array()) {
    if (!item.array()) {
      left.push_back(std::move(item));
    } else if (item.array()->size() == 1) {
      left.push_back(std::move(item.array()->front()));
    } else {
      return std::nullopt;
    }
  }
  return left;
}

// Puts the error rows of a single column, which Excel left out, back as null. None when the texts
// do not say which rows they are.
std::optional<Array> realignDroppedErrors(JSONValue value2, const Array& texts, const Dims& dims) {
  if (dims.cols != 1) return std::nullopt;
  std::optional<Array> left = survivors(std::move(value2));
  if (!left || std::any_of(left->begin(), left->end(), isErrorText)) return std::nullopt;
  const auto isErrorRow = [](const JSONValue& row) { return isErrorText(row.array()->front()); };
  const std::ptrdiff_t errors = std::count_if(texts.begin(), texts.end(), isErrorRow);
  if (errors == 0 || !hasSize(*left, dims.rows - errors)) return std::nullopt;
  Array rows;
  auto next = left->begin();
  for (const JSONValue& row : texts)
    rows.push_back(listOf(isErrorRow(row) ? JSONValue(nullptr) : std::move(*next++)));
  return rows;
}

// Every cell without a value that shows an error gets that text.
void nameErrors(Array& values, const Array& texts) {
  for (std::size_t row = 0; row < values.size(); ++row) {
    Array& cells = *values[row].array();
    const Array& shown = *texts[row].array();
    for (std::size_t col = 0; col < cells.size(); ++col)
      if (isVoid(cells[col]) && isErrorText(shown[col])) cells[col] = shown[col];
  }
}

bool showsErrorsAlone(const Array& texts) {
  return std::all_of(texts.begin(), texts.end(), [](const JSONValue& row) {
    return std::all_of(row.array()->begin(), row.array()->end(), isErrorText);
  });
}

}  // namespace

std::optional<Array> grid(JSONValue value, const Dims& dims) {
  if (dims.rows < 1 || dims.cols < 1 || value.object()) return std::nullopt;
  if (!value.array()) {
    if (dims.rows != 1 || dims.cols != 1) return std::nullopt;
    return listOf(listOf(std::move(value)));
  }
  Array& items = *value.array();
  const auto isList = [](const JSONValue& item) { return item.array() != nullptr; };
  if (std::none_of(items.begin(), items.end(), isList)) {
    if (dims.rows == 1 && hasSize(items, dims.cols)) return listOf(std::move(value));
    if (dims.cols != 1 || !hasSize(items, dims.rows)) return std::nullopt;
    for (JSONValue& item : items) item = listOf(std::move(item));
    return std::move(items);
  }
  const bool fits = hasSize(items, dims.rows) &&
                    std::all_of(items.begin(), items.end(), [&](const JSONValue& item) {
                      return item.array() && hasSize(*item.array(), dims.cols);
                    });
  if (!fits) return std::nullopt;
  return std::move(items);
}

std::optional<Array> namedValues(JSONValue value2, JSONValue shown, const Dims& dims) {
  std::optional<Array> texts = grid(std::move(shown), dims);
  if (isEmptyContainer(value2)) {
    // No row was left: all of them must show an error.
    if (!texts || !showsErrorsAlone(*texts)) return std::nullopt;
    return texts;
  }
  if (!texts) return grid(std::move(value2), dims);
  std::optional<Array> values = grid(value2, dims);
  if (!values) values = realignDroppedErrors(std::move(value2), *texts, dims);
  if (values) nameErrors(*values, *texts);
  return values;
}

}  // namespace quorin::BridgeShapes
