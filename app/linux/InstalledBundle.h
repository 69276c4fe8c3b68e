// InstalledBundle: the bundle port for a program with its resources in a folder: share/quorin of
// the install prefix, or "resources" beside a program that was built and not installed.
#pragma once

#include "app/shell/ports/Bundle.h"

namespace quorin {

class InstalledBundle : public Bundle {
 public:
  // `program` is the running program's own file.
  explicit InstalledBundle(const std::filesystem::path& program);

  std::string infoString(const std::string& key) const override;
  std::optional<std::filesystem::path> resourceFolder() const override { return resources_; }

 private:
  std::optional<std::filesystem::path> resources_;
};

}  // namespace quorin
