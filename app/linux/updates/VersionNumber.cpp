#include "app/linux/updates/VersionNumber.h"

#include <charconv>

namespace quorin {

namespace {

constexpr std::size_t mostParts = 8, mostDigits = 9;

}  // namespace

std::optional<VersionNumber> VersionNumber::parse(std::string_view text) {
  VersionNumber version;
  for (;;) {
    const std::size_t dot = text.find('.');
    const std::string_view part = text.substr(0, dot);
    if (part.empty() || part.size() > mostDigits || version.parts_.size() == mostParts) return {};
    std::uint32_t number = 0;
    const char* const end = part.data() + part.size();
    if (std::from_chars(part.data(), end, number).ptr != end) return {};
    version.parts_.push_back(number);
    if (dot == std::string_view::npos) break;
    text.remove_prefix(dot + 1);
  }
  while (!version.parts_.empty() && version.parts_.back() == 0) version.parts_.pop_back();
  return version;
}

}  // namespace quorin
