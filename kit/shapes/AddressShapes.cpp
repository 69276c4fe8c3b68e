#include "kit/shapes/AddressShapes.h"

#include <algorithm>
#include <iterator>

namespace quorin::BridgeShapes {

int selectionAreaCount(std::string_view address) {
  if (address.empty()) return 0;
  int areas = 1;
  int brackets = 0;
  bool quoted = false;
  for (const char c : address) {
    if (c == '\'') {
      quoted = !quoted;
    } else if (quoted) {
      continue;
    } else if (c == '[') {
      ++brackets;
    } else if (c == ']') {
      brackets = std::max(0, brackets - 1);
    } else if ((c == ',' || c == ';') && brackets == 0) {
      ++areas;
    }
  }
  return areas;
}

std::string stripDollars(std::string_view address) {
  std::string bare;
  bare.reserve(address.size());
  std::copy_if(address.begin(), address.end(), std::back_inserter(bare),
               [](char c) { return c != '$'; });
  return bare;
}

}  // namespace quorin::BridgeShapes
