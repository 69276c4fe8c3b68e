// MacBundle: the application's bundle, through NSBundle. Any thread.
#pragma once

#include "app/shell/ports/Bundle.h"

namespace quorin {

class MacBundle : public Bundle {
 public:
  std::string infoString(const std::string& key) const override;
  std::optional<std::filesystem::path> resourceFolder() const override;
};

}  // namespace quorin
