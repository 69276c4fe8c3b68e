#include "app/linux/InstalledBundle.h"

#include <system_error>

namespace quorin {

InstalledBundle::InstalledBundle(const std::filesystem::path& program) {
  const std::filesystem::path folder = program.parent_path();
  for (const auto& candidate : {folder / "resources", folder.parent_path() / "share" / "quorin"}) {
    std::error_code ignored;
    if (std::filesystem::is_directory(candidate, ignored)) {
      resources_ = candidate;
      return;
    }
  }
}

// What macOS keeps in Info.plist comes from the build.
std::string InstalledBundle::infoString(const std::string& key) const {
  if (key == "CFBundleShortVersionString") return QUORIN_VERSION;
  if (key == "CFBundleIdentifier") return "com.quorin.app";
  if (key == "QXSupportEmail") return QUORIN_SUPPORT_EMAIL;
  if (key == "SUFeedURL") return QUORIN_UPDATE_FEED;
  if (key == "SUPublicEDKey") return QUORIN_UPDATE_KEY;
  if (key == "QXUpdateAuthorities") return QUORIN_UPDATE_AUTHORITIES;
  if (key == "QXArchitecture") return QUORIN_ARCHITECTURE;
  return {};
}

}  // namespace quorin
