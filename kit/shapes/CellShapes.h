// BridgeShapes for one cell: from the positional lists of qx_probe, qx_readcell and qx_pollcell to
// reply payloads. Pure functions for any thread.
#pragma once

#include <string>

#include "kit/shapes/CellPlace.h"
#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// {"state"} and, when Excel gave four finite bounds, {"excelWindow": {"x1", "y1", "x2", "y2"}}.
// An answer that is not {text, left, top, right, bottom} reads as state "busy".
JSONValue probeObject(const JSONValue& answer);

// The probe state of a failed call: "denied" when the system refused to pass Apple events on
// (-1743, -1744), "busy" for every other code.
std::string probeState(int errorCode);

// {"book", "sheet", "addr", "row", "col", "formula", "formulaLocal", "value"} and, where Excel gave
// them, "selection" and "region". Formulas only: Excel reports a constant as its own formula.
// Throws ShapeError.
JSONValue readCellObject(const JSONValue& answer);

// {"book", "sheet", "addr"} of three texts, the address as Excel gave it. Throws ShapeError.
JSONValue pollCellObject(const JSONValue& answer);

// Where the active cell is, of a pollCell payload. Throws ShapeError.
CellPlace activePlace(const JSONValue& polled);

}  // namespace quorin::BridgeShapes
