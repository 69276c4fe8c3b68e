// PackageFile: a Debian package on the disk, in a folder of its own that only this user may enter.
// Any thread; blocking.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorin {

// What a package says it is.
struct PackageIdentity {
  std::string name, version, architecture;
  bool operator==(const PackageIdentity&) const = default;

  std::string fileName() const { return name + "_" + version + "_" + architecture + ".deb"; }
};

namespace PackageFile {

// What dpkg-deb reads in the file; none when that is no package.
std::optional<PackageIdentity> identity(const std::filesystem::path& file);

// Makes the folder anew with the one file in it. Throws FileError or std::filesystem's errors; what
// was written by then is still there.
std::filesystem::path save(const std::filesystem::path& folder, const std::string& name,
                           std::string_view bytes);

// Removes the folder with all that is in it. That it is not there, or stays, is no error.
void discard(const std::filesystem::path& folder);

}  // namespace PackageFile
}  // namespace quorin
