// BridgeShapes for the cells of a range: fitting what Excel gives into a grid of `rows` arrays of
// `cols` cells. Pure functions for any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

struct Dims {
  std::int64_t rows = 0;
  std::int64_t cols = 0;
};

// The value as a grid: a list of rows, a plain list for a single row or column, a bare value for a
// single cell. None when it does not fit.
std::optional<JSONValue::Array> grid(JSONValue value, const Dims& dims);

// The values of a range, errors as the texts they are displayed by. `shown` holds the displayed
// texts, or anything else when they were not read. None when the values do not fit.
std::optional<JSONValue::Array> namedValues(JSONValue value2, JSONValue shown, const Dims& dims);

}  // namespace quorin::BridgeShapes
