// BridgeShapes for ranges: from the lists of qx_readrange, qx_readtexts and qx_readformulas to
// reply payloads. Pure functions for any thread; the answers are taken apart, not copied. Every
// refusal is a ShapeError whose text is the one the page is told.
//
// A grid is an array of `rows` arrays of `cols` cells. Excel leaves the error rows out of the
// values of a single column; they are put back with the help of the displayed texts, and a cell
// without a value that shows an error text has that text for a value.
#pragma once

#include <cstddef>
#include <string>

#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// {"values", "rows", "cols"}, or {"tooBig": true, "rows", "cols"} for more than 20000 cells.
JSONValue decodeReadRange(const std::string& addr, JSONValue answer);

// {"formulas", "values", "rows", "cols"}; the values are [] when formulas alone were asked for, and
// what the formula texts tell of them when Excel cannot read them.
JSONValue decodeReadFormulas(const std::string& addr, JSONValue answer);

// {"texts"}: for each address a grid of what its cells show, or null where that was not told. Shown
// is what the sheet shows: hashes in Excel where the column is too narrow.
JSONValue decodeReadTexts(std::size_t addresses, const JSONValue& answer);

// Formula texts as they are, everything else, at any place in lists, as "": Excel reports a
// constant as its own formula.
JSONValue normalizeFormulaGrid(JSONValue value);

}  // namespace quorin::BridgeShapes
