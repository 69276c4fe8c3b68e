// BridgeShapes for moving a highlight: whether what is recorded can be pointed at other cells
// instead of being cleared and made anew. Pure function for any thread.
#pragma once

#include <optional>

#include "kit/marks/HighlightStore.h"

namespace quorin::BridgeShapes {

// The one record to move from: the whole of a request for one sheet, in the wanted workbook, sheet
// and colour but with other addresses, neither of the two longer than `maxAddrs`. None otherwise.
std::optional<HighlightStore::Record> movePlan(const HighlightStore::Records& recorded,
                                               const HighlightStore::Record& wanted,
                                               std::size_t maxAddrs);

}  // namespace quorin::BridgeShapes
