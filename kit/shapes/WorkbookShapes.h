// BridgeShapes for the map of a workbook: from the list of qx_workbookmap to the reply payload.
// Pure function for any thread.
#pragma once

#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// {"book", "sheets": [{"name", "usedRange"}], "sheetsTruncated", "names": [{"name", "refersTo"}]}.
// A used range that could not be read, or was not for there are more than 50 sheets, is null.
// Excel's internal names are left out. Throws ShapeError.
JSONValue workbookMapObject(JSONValue answer);

}  // namespace quorin::BridgeShapes
