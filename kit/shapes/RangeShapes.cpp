#include "kit/shapes/RangeShapes.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "kit/shapes/GridShapes.h"
#include "kit/shapes/ShapeError.h"
#include "kit/value/Marshal.h"
#include "kit/value/RealText.h"
#include "kit/value/WholeNumber.h"

namespace quorin::BridgeShapes {

namespace {

using Array = JSONValue::Array;

constexpr std::string_view tooBig = "__TOOBIG";
constexpr std::string_view multi = "__MULTI";
constexpr std::string_view errorColumn = "__ERRCOL";

bool isMarker(const JSONValue& value, std::string_view marker) {
  return value.string() && *value.string() == marker;
}

std::string quoted(const std::string& addr) {
  return "'" + addr + "'";
}

std::string frame(const Dims& dims) {
  return std::to_string(dims.rows) + "\u00d7" + std::to_string(dims.cols);
}

// A product that does not fit is none.
std::optional<std::int64_t> cellCount(const Dims& dims) {
  std::int64_t product = 0;
  if (__builtin_mul_overflow(dims.rows, dims.cols, &product)) return std::nullopt;
  return product;
}

// The dimensions of one area. `cells` counts all areas, so that a union shows. `marker` is that of
// a refusal, if the numbers come with one.
Dims checkedDims(const std::string& addr, const JSONValue& rows, const JSONValue& cols,
                 const JSONValue& cells, std::string_view marker = {}) {
  const auto rowTotal = wholeNumber(rows);
  const auto colTotal = wholeNumber(cols);
  if (!rowTotal || !colTotal) throw ShapeError("range dims unreadable for " + quoted(addr));
  const auto cellTotal = wholeNumber(cells);
  if (!cellTotal)
    throw ShapeError("multi-area oracle unreadable for " + quoted(addr) +
                     (marker.empty() ? "" : " (" + std::string(marker) + " payload)"));
  const Dims dims{*rowTotal, *colTotal};
  const auto expected = cellCount(dims);
  if (!expected) throw ShapeError("range dims overflow for " + quoted(addr) + ": " + frame(dims));
  if (*expected != *cellTotal)
    throw ShapeError("multi-area " + quoted(addr) + ": " + std::to_string(*cellTotal) +
                     " cells in a " + frame(dims) + " frame - Excel returns only the first area");
  return dims;
}

JSONValue withDims(JSONValue::Object object, const Dims& dims) {
  object["rows"] = static_cast<double>(dims.rows);
  object["cols"] = static_cast<double>(dims.cols);
  return object;
}

// The reply to a range that is too big; throws for the other refusals. None when the answer is no
// refusal.
std::optional<JSONValue> markerDims(const std::string& addr, const Array& answer) {
  if (answer.size() != 4) return std::nullopt;
  for (const std::string_view marker : {tooBig, errorColumn, multi}) {
    if (!isMarker(answer[0], marker)) continue;
    const Dims dims = checkedDims(addr, answer[1], answer[2], answer[3], marker);
    if (marker == tooBig) return withDims({{"tooBig", true}}, dims);
    if (marker == errorColumn)
      throw ShapeError("range has an error in its first column - Excel cannot read it as a grid");
    throw ShapeError("multi-area " + quoted(addr) + ": handler oracle fired but dims agree (" +
                     frame(dims) + ")");
  }
  return std::nullopt;
}

// The items of an answer that can be passed on. `verb` begins the refusals.
Array& itemsOf(JSONValue& answer, const std::string& verb, const std::string& addr) {
  if (!answer.array()) throw ShapeError(verb + " payload is not a list for " + quoted(addr));
  if (Marshal::containsUnmarshalled(answer))
    throw ShapeError(verb + " payload could not be marshalled for " + quoted(addr));
  return *answer.array();
}

[[noreturn]] void refuseCount(const Array& items, const std::string& verb,
                              const std::string& addr) {
  throw ShapeError(verb + " payload has " + std::to_string(items.size()) + " items for " +
                   quoted(addr));
}

Array valuesOr(std::optional<Array> values, const std::string& addr) {
  if (!values) throw ShapeError("range values unreadable for " + quoted(addr));
  return *std::move(values);
}

Array formulaGrid(JSONValue written, const Dims& dims, const std::string& addr) {
  std::optional<Array> formulas = grid(normalizeFormulaGrid(std::move(written)), dims);
  if (!formulas) throw ShapeError("formula grid unreadable for " + quoted(addr));
  return *std::move(formulas);
}

// Blanks what is no formula.
void keepFormulas(JSONValue& value) {
  if (JSONValue::Array* const items = value.array()) {
    for (JSONValue& item : *items) keepFormulas(item);
  } else if (!value.string() || !value.string()->starts_with('=')) {
    value = "";
  }
}

// A text that is a decimal number from its first character to its last.
std::optional<double> decimal(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  return readReal(text);
}

// The value of a cell as far as its formula tells: a constant is its own formula, as text.
JSONValue valueOfFormula(JSONValue written) {
  const std::string* const text = written.string();
  if (!text) return written;
  if (text->starts_with('=')) return "";
  if (*text == "TRUE") return true;
  if (*text == "FALSE") return false;
  if (const auto number = decimal(*text)) return *number;
  return written;
}

Array valuesOfFormulas(JSONValue written, const Dims& dims, const std::string& addr) {
  Array rows = valuesOr(grid(std::move(written), dims), addr);
  for (JSONValue& row : rows)
    for (JSONValue& cell : *row.array()) cell = valueOfFormula(std::move(cell));
  return rows;
}

JSONValue formulasOnly(const std::string& addr, Array& items) {
  const double* const rows = items[1].number();
  const double* const cols = items[2].number();
  if (!rows || !cols) throw ShapeError("readFormulas dims unreadable for " + quoted(addr));
  const Dims dims = checkedDims(addr, items[1], items[2], *rows * *cols);
  JSONValue::Object reply;
  reply["formulas"] = formulaGrid(std::move(items[0]), dims, addr);
  reply["values"] = Array();
  return withDims(std::move(reply), dims);
}

JSONValue formulasAndValues(const std::string& addr, Array& items) {
  const Dims dims = checkedDims(addr, items[2], items[3], items[5]);
  const bool refused = isMarker(items[1], errorColumn);
  Array formulas = formulaGrid(refused ? items[0] : std::move(items[0]), dims, addr);
  Array values = refused
                     ? valuesOfFormulas(std::move(items[0]), dims, addr)
                     : valuesOr(namedValues(std::move(items[1]), std::move(items[4]), dims), addr);
  JSONValue::Object reply;
  reply["formulas"] = std::move(formulas);
  reply["values"] = std::move(values);
  return withDims(std::move(reply), dims);
}

}  // namespace

JSONValue decodeReadRange(const std::string& addr, JSONValue answer) {
  Array& items = itemsOf(answer, "readRange", addr);
  if (std::optional<JSONValue> refusal = markerDims(addr, items)) return *std::move(refusal);
  if (items.size() != 5) refuseCount(items, "readRange", addr);
  const Dims dims = checkedDims(addr, items[1], items[2], items[4]);
  JSONValue::Object reply;
  reply["values"] = valuesOr(namedValues(std::move(items[0]), std::move(items[3]), dims), addr);
  return withDims(std::move(reply), dims);
}

JSONValue decodeReadFormulas(const std::string& addr, JSONValue answer) {
  Array& items = itemsOf(answer, "readFormulas", addr);
  if (markerDims(addr, items)) throw ShapeError("readFormulas over 20000 cells - chunk the read");
  if (items.size() == 3) return formulasOnly(addr, items);
  if (items.size() == 6) return formulasAndValues(addr, items);
  refuseCount(items, "readFormulas", addr);
}

JSONValue decodeReadTexts(std::size_t addresses, const JSONValue& answer) {
  const Array* const items = answer.array();
  if (!items || items->size() != addresses || Marshal::containsUnmarshalled(answer))
    throw ShapeError("readTexts payload has an unexpected shape");
  Array told;
  for (const JSONValue& item : *items) {
    const Array* const one = item.array();
    if (!one || one->size() != 3) {
      told.emplace_back(nullptr);
      continue;
    }
    const auto rows = wholeNumber((*one)[1]), cols = wholeNumber((*one)[2]);
    if (!rows || !cols) throw ShapeError("readTexts dims unreadable");
    auto texts = grid((*one)[0], {*rows, *cols});
    if (texts)
      told.emplace_back(std::move(*texts));
    else
      told.emplace_back(nullptr);
  }
  return JSONValue::Object{{"texts", std::move(told)}};
}

JSONValue normalizeFormulaGrid(JSONValue value) {
  keepFormulas(value);
  return value;
}

}  // namespace quorin::BridgeShapes
