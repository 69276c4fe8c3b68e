// Bundle: what was built and installed together with the program. Any thread.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorin {

class Bundle {
 public:
  virtual ~Bundle() = default;

  // A text of the application's Info.plist: "CFBundleShortVersionString", "QXSupportEmail" ... The
  // empty text when the key is absent or holds something else.
  virtual std::string infoString(const std::string& key) const = 0;

  // The folder of the application's resources, if there is one.
  virtual std::optional<std::filesystem::path> resourceFolder() const = 0;
};

}  // namespace quorin
