// MacLoginItem: the application itself as a login item, through SMAppService. Main thread only.
#pragma once

#include "app/shell/ports/LoginItem.h"

namespace quorin {

class MacLoginItem : public LoginItem {
 public:
  bool isInstalled() const override;
  LoginItemStatus status() const override;
  std::optional<std::string> registerItem() override;
  std::optional<std::string> unregisterItem() override;
};

}  // namespace quorin
