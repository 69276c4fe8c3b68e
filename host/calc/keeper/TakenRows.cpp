#include "host/calc/keeper/TakenRows.h"

#include <algorithm>

namespace quorin::host::calc {

void TakenRows::begin(const UndoList::Place& place) {
  now_ = place.now;
  lowest_ = std::min(lowest_, place.lowest);
}

void TakenRows::looked() {
  last_ = lowest_ = now_;
}

bool TakenRows::take(const ShownRows::Entry& row) {
  const int ours = std::min(last_, lowest_);
  if (now_ <= ours) return false;
  rows_[idOf(row)] = {ours, now_};
  return true;
}

bool TakenRows::isUndone(const ShownRows::Entry& row, bool isVisible) {
  const auto found = rows_.find(idOf(row));
  if (found == rows_.end() || lowest_ >= found->second.his) return false;
  if (isVisible) return true;
  // He has hidden it once more since, or by a step that nobody has looked after.
  Places& places = found->second;
  places.ours = std::min(places.ours, lowest_);
  if (now_ > places.ours) places.his = now_;
  return false;
}

void TakenRows::forget(const ShownRows::Entry& row) {
  rows_.erase(idOf(row));
}

}  // namespace quorin::host::calc
