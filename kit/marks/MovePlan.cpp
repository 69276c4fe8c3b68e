#include "kit/marks/MovePlan.h"

namespace quorin::BridgeShapes {

std::optional<HighlightStore::Record> movePlan(const HighlightStore::Records& recorded,
                                               const HighlightStore::Record& wanted,
                                               std::size_t maxAddrs) {
  if (recorded.size() != 1) return std::nullopt;
  const HighlightStore::Record& from = recorded.front();
  const bool movable = from.single == true && from.book == wanted.book &&
                       from.sheet == wanted.sheet && from.rgb == wanted.rgb &&
                       from.addrs != wanted.addrs && from.addrs.size() <= maxAddrs &&
                       wanted.addrs.size() <= maxAddrs;
  return movable ? std::optional(from) : std::nullopt;
}

}  // namespace quorin::BridgeShapes
