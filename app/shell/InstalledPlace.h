// InstalledPlace: where an application lies that the user has installed. Pure; any thread.
#pragma once

#include <filesystem>

namespace quorin {

// True if the bundle lies in one of the folders Applications, the system's or the user's, at any
// depth. Not so a disk image, the downloads or a folder in which it was built.
bool isInstalledApplication(const std::filesystem::path& bundle, const std::filesystem::path& home);

}  // namespace quorin
