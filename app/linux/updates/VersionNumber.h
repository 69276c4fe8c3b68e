// VersionNumber: a version as releases are numbered, dotted whole numbers: "1.10" is newer than
// "1.9", and "1.2" is the same as "1.2.0". A value type for any thread.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quorin {

class VersionNumber {
 public:
  // None for anything but up to eight numbers of at most nine digits with dots between them.
  static std::optional<VersionNumber> parse(std::string_view text);

  auto operator<=>(const VersionNumber&) const = default;

 private:
  std::vector<std::uint32_t> parts_;  // without zeros at the end
};

}  // namespace quorin
