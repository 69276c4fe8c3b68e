#include "host/calc/keeper/TakenLines.h"

#include <algorithm>

namespace quorin::host::calc {

void TakenLines::begin(const UndoList::Place& place) {
  now_ = place.now;
  lowest_ = std::min(lowest_, place.lowest);
}

void TakenLines::looked() {
  last_ = lowest_ = now_;
}

bool TakenLines::take(const ShownLines::Entry& line) {
  const int ours = std::min(last_, lowest_);
  if (now_ <= ours) return false;
  lines_[idOf(line)] = {ours, now_};
  return true;
}

bool TakenLines::isUndone(const ShownLines::Entry& line, bool isVisible) {
  const auto found = lines_.find(idOf(line));
  if (found == lines_.end() || lowest_ >= found->second.his) return false;
  if (isVisible) return true;
  // He has hidden it once more since, or by a step that nobody has looked after.
  Places& places = found->second;
  places.ours = std::min(places.ours, lowest_);
  if (now_ > places.ours) places.his = now_;
  return false;
}

void TakenLines::forget(const ShownLines::Entry& line) {
  lines_.erase(idOf(line));
}

}  // namespace quorin::host::calc
