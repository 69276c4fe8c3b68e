// XDGLoginItem: the login item port as a desktop file in the user's autostart folder. It counts as
// enabled unless it says "Hidden=true", by which desktops switch an entry off. The file is made and
// replaced whole. Main thread only.
#pragma once

#include <filesystem>

#include "app/shell/ports/LoginItem.h"

namespace quorin {

class XDGLoginItem : public LoginItem {
 public:
  // `program` is the running program's own file, `configuration` the user's folder of settings.
  XDGLoginItem(std::filesystem::path program, const std::filesystem::path& configuration);

  bool isInstalled() const override;
  LoginItemStatus status() const override;
  std::optional<std::string> registerItem() override;
  std::optional<std::string> unregisterItem() override;

 private:
  std::filesystem::path program_, file_;
};

}  // namespace quorin
