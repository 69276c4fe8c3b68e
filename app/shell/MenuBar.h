// MenuBar: the status item's menu and what its items do. Main thread only; owned by the application
// delegate.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/shell/Panel.h"
#include "app/shell/Poller.h"
#include "app/shell/Support.h"
#include "app/shell/ports/LoginItem.h"
#include "app/shell/ports/StatusItem.h"

namespace quorin {

// The status's name in the log.
std::string_view name(LoginItemStatus status);

class MenuBar : private StatusItemDelegate {
 public:
  static constexpr const char* imageName = "MenuBarIcon";

  // Everything here must outlive the object.
  struct Parts {
    AppPlatform& platform;
    PanelBridge& bridge;
    Panel& panel;
    Poller& poller;
    Support& support;
    DiagLog& log;
  };

  // Shows the item, where the desktop has a place for it.
  explicit MenuBar(Parts parts);
  ~MenuBar() override;

  void toggleFollow();
  void setFollowing(bool following);
  void openSettings();
  void clearStuck();
  void openLog();
  void checkForUpdates();
  void toggleLogin();
  void refreshLoginItem();

  // Gives the system's description of what went wrong, which is in the log too; none when nothing
  // did.
  std::optional<std::string> setLogin(bool starts);

 private:
  // Those that change while the menu is set; the others stay as they are made.
  enum class Changing { none, follow, updates, login };

  struct Entry {
    MenuItem item;
    std::function<void()> action;
    Changing name = Changing::none;
  };

  std::vector<Entry> makeEntries();
  void change(Changing name, const MenuItem& item);
  void refreshUpdateItem();
  void tellCleared(const PanelBridge::Reply& reply);
  void tell(const Alert& alert);

  void menuWillOpen() override;
  void menuItemChosen(std::size_t index) override;

  Parts parts_;
  std::vector<Entry> entries_;
  std::unique_ptr<StatusItem> statusItem_;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
