#include "app/linux/GtkStatusItem.h"

#include <algorithm>
#include <gtk/gtk.h>
#include <string_view>
#ifdef GDK_WINDOWING_WAYLAND
#include <gdk/gdkwayland.h>
#endif

namespace quorin {

namespace {

constexpr const char* identifier = "quorin";
constexpr const char* library = "libayatana-appindicator";  // as its messages are marked

// Newer versions of the library say to compilers and on the terminal that there is a successor. It
// has no GTK menus and Debian 13 does not have it: nobody who reads that could do anything about
// it. Whatever else the library says is said.
void sayAllButThat(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer) {
  if (std::string_view(message).starts_with("libayatana-appindicator is deprecated.")) return;
  g_log_default_handler(domain, level, message, nullptr);
}

AppIndicator* newIndicator(const std::string& iconName, const std::filesystem::path& iconFolder) {
  const guint handler = g_log_set_handler(library, G_LOG_LEVEL_WARNING, sayAllButThat, nullptr);
  G_GNUC_BEGIN_IGNORE_DEPRECATIONS
  AppIndicator* const made = app_indicator_new_with_path(
      identifier, iconName.c_str(), APP_INDICATOR_CATEGORY_APPLICATION_STATUS,
      iconFolder.empty() ? nullptr : iconFolder.c_str());
  G_GNUC_END_IGNORE_DEPRECATIONS
  g_log_remove_handler(library, handler);
  return made;
}

}  // namespace

GtkStatusItem::GtkStatusItem(const std::string& iconName, const std::filesystem::path& iconFolder)
    : indicator_(newIndicator(iconName, iconFolder)) {
  app_indicator_set_title(indicator_.get(), "Quorin");
#ifdef GDK_WINDOWING_WAYLAND
  // What the library shows where there is no bar for it is an icon in X11's.
  if (GDK_IS_WAYLAND_DISPLAY(gdk_display_get_default())) {
    APP_INDICATOR_GET_CLASS(indicator_.get())->fallback = nullptr;
  }
#endif
  setMenu({});
  app_indicator_set_status(indicator_.get(), APP_INDICATOR_STATUS_ACTIVE);
}

GtkStatusItem::~GtkStatusItem() {
  for (const Row& row : rows_) g_signal_handlers_disconnect_by_data(row.widget, this);
  g_signal_handlers_disconnect_by_data(menu_.get(), this);
  if (root_) g_signal_handlers_disconnect_by_data(root_.get(), this);
}

void GtkStatusItem::setMenu(const std::vector<MenuItem>& items) {
  if (menu_) g_signal_handlers_disconnect_by_data(menu_.get(), this);
  menu_.reset(GTK_MENU(g_object_ref_sink(gtk_menu_new())));
  rows_.clear();
  for (const MenuItem& item : items) {
    rows_.push_back({item, makeWidget(item)});
    gtk_menu_shell_append(GTK_MENU_SHELL(menu_.get()), rows_.back().widget);
    gtk_widget_show(rows_.back().widget);
    describe(rows_.back());
  }
  app_indicator_set_menu(indicator_.get(), menu_.get());
  watchOpening();
}

void GtkStatusItem::setItem(std::size_t index, const MenuItem& item) {
  if (index >= rows_.size()) return;
  rows_[index].item = item;
  describe(rows_[index]);
}

GtkWidget* GtkStatusItem::makeWidget(const MenuItem& item) {
  if (item.title.empty()) return gtk_separator_menu_item_new();
  GtkWidget* const widget =
      item.checkable ? gtk_check_menu_item_new_with_label("") : gtk_menu_item_new_with_label("");
  g_signal_connect(widget, "activate", G_CALLBACK(activated), this);
  return widget;
}

void GtkStatusItem::describe(const Row& row) {
  if (row.item.title.empty()) return;
  describing_ = true;
  gtk_menu_item_set_label(GTK_MENU_ITEM(row.widget), row.item.title.c_str());
  gtk_widget_set_sensitive(row.widget, row.item.enabled);
  if (GTK_IS_CHECK_MENU_ITEM(row.widget)) {
    gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(row.widget), row.item.checked);
  }
  describing_ = false;
}

// A bar asks over D-Bus before it opens the menu; the tray's menu tells that it is shown. So it
// does once more in the beginning, as the library prepares it.
void GtkStatusItem::watchOpening() {
  g_signal_connect(menu_.get(), "show", G_CALLBACK(shown), this);
  GObject* server = nullptr;
  g_object_get(indicator_.get(), "dbus-menu-server", &server, nullptr);
  const GObjectPtr<GObject> owned(server);
  if (!server) return;
  GObject* root = nullptr;
  g_object_get(server, "root-node", &root, nullptr);
  if (root_) g_signal_handlers_disconnect_by_data(root_.get(), this);
  root_.reset(root);
  if (root) g_signal_connect(root, "about-to-show", G_CALLBACK(aboutToShow), this);
}

// A click on a disabled item comes through the bar, too: the delegate knows which are. The mark of
// a check item has changed by itself and is set to what it should be.
void GtkStatusItem::activated(GtkMenuItem* widget, gpointer data) {
  auto& self = *static_cast<GtkStatusItem*>(data);
  if (self.describing_) return;
  const auto row = std::find_if(self.rows_.begin(), self.rows_.end(),
                                [&](const Row& one) { return one.widget == GTK_WIDGET(widget); });
  const auto index = static_cast<std::size_t>(row - self.rows_.begin());
  if (self.delegate_) self.delegate_->menuItemChosen(index);
  if (index < self.rows_.size()) self.describe(self.rows_[index]);
}

void GtkStatusItem::shown(GtkWidget*, gpointer data) {
  auto& self = *static_cast<GtkStatusItem*>(data);
  if (self.delegate_) self.delegate_->menuWillOpen();
}

gboolean GtkStatusItem::aboutToShow(GObject*, gpointer self) {
  shown(nullptr, self);
  return TRUE;
}

}  // namespace quorin
