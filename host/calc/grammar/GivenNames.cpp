#include "host/calc/grammar/GivenNames.h"

#include <algorithm>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {

const GivenName* GivenNames::find(const std::string& word) const {
  const std::string capitals = upperCase(word);
  const auto found = std::find_if(names_.rbegin(), names_.rend(), [&](const GivenName& one) {
    return one.counts && one.word == capitals;
  });
  return found == names_.rend() ? nullptr : &*found;
}

void GivenNames::argumentEnds(std::size_t call, std::size_t ended) {
  for (GivenName& one : names_)
    one.counts = one.counts || (one.call == call && one.argument <= ended);
}

void GivenNames::callEnds(std::size_t call) {
  std::erase_if(names_, [call](const GivenName& one) { return one.call == call; });
}

std::optional<std::string> GivenNames::asked(std::string_view text) const {
  const std::string capitals = upperCase(text);
  std::string before;
  bool isUsed = false, isKnown = true;
  for (const GivenName& one : names_) {
    if (!one.counts) continue;
    isUsed = isUsed || capitals.find(one.word) != std::string::npos;
    isKnown = isKnown && !one.value.empty();
    before += one.word + "," + one.value + ",";
  }
  if (!isUsed) return std::string(text);
  if (!isKnown) return std::nullopt;
  return "LET(" + before + std::string(text) + ")";
}

}  // namespace quorin::host::calc
