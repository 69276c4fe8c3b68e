// StatusItem: the application's icon in the status bar with its menu. Shown as long as it lives.
// Main thread only.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorin {

struct MenuItem {
  std::string title;  // empty: a separator
  bool enabled = true;
  bool checked = false;
  bool checkable = false;  // has a place for a mark; of an item for as long as the menu is set
  bool operator==(const MenuItem&) const = default;
};

class StatusItemDelegate {
 public:
  virtual ~StatusItemDelegate() = default;
  virtual void menuWillOpen() = 0;  // the last moment to change its items
  virtual void menuItemChosen(std::size_t index) = 0;
};

class StatusItem {
 public:
  virtual ~StatusItem() = default;

  virtual void setDelegate(StatusItemDelegate* delegate) = 0;  // none while null
  virtual void setMenu(const std::vector<MenuItem>& items) = 0;
  virtual void setItem(std::size_t index, const MenuItem& item) = 0;  // of the menu that is set
};

}  // namespace quorin
