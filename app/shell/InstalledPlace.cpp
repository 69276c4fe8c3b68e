#include "app/shell/InstalledPlace.h"

#include <algorithm>

namespace quorin {

namespace {

bool isInside(const std::filesystem::path& path, const std::filesystem::path& folder) {
  const auto [end, rest] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return end == folder.end() && rest != path.end();
}

}  // namespace

bool isInstalledApplication(const std::filesystem::path& bundle,
                            const std::filesystem::path& home) {
  const std::filesystem::path place = bundle.lexically_normal();
  return isInside(place, "/Applications") ||
         (!home.empty() && isInside(place, home / "Applications"));
}

}  // namespace quorin
