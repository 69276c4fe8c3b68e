// GtkStatusItem: the status item port over StatusNotifierItem, with the menu over D-Bus. Where no
// bar of the desktop takes such items the library shows an icon in the old tray, with the same
// menu; without either the item is not to be seen.
#pragma once

#include <filesystem>
#include <gtk/gtk.h>
#include <libayatana-appindicator/app-indicator.h>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/StatusItem.h"

namespace quorin {

class GtkStatusItem : public StatusItem {
 public:
  // The icon is found by its name in the icon theme or in the folder, which may be empty.
  GtkStatusItem(const std::string& iconName, const std::filesystem::path& iconFolder);
  ~GtkStatusItem() override;
  GtkStatusItem(const GtkStatusItem&) = delete;
  GtkStatusItem& operator=(const GtkStatusItem&) = delete;

  void setDelegate(StatusItemDelegate* delegate) override { delegate_ = delegate; }
  void setMenu(const std::vector<MenuItem>& items) override;
  void setItem(std::size_t index, const MenuItem& item) override;

  // What the tray shows, for a look at it without a bar.
  GtkMenu* menu() const { return menu_.get(); }

 private:
  struct Row {
    MenuItem item;
    GtkWidget* widget;  // the menu's
  };

  GtkWidget* makeWidget(const MenuItem& item);
  void describe(const Row& row);
  void watchOpening();

  static void activated(GtkMenuItem* widget, gpointer self);
  static void shown(GtkWidget*, gpointer self);
  static gboolean aboutToShow(GObject*, gpointer self);

  GObjectPtr<AppIndicator> indicator_;
  GObjectPtr<GtkMenu> menu_;
  GObjectPtr<GObject> root_;  // the menu as the bar sees it
  std::vector<Row> rows_;
  StatusItemDelegate* delegate_ = nullptr;
  bool describing_ = false;  // to mark a check item is to activate it
};

}  // namespace quorin
