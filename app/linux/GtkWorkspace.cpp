#include "app/linux/GtkWorkspace.h"

#include <gtk/gtk.h>

#include "app/linux/GLibHandles.h"

namespace quorin {

bool GtkWorkspace::openURL(const std::string& url) {
  GError* error = nullptr;
  const bool opened = gtk_show_uri_on_window(nullptr, url.c_str(), GDK_CURRENT_TIME, &error);
  const GErrorPtr owned(error);
  return opened;
}

bool GtkWorkspace::openFile(const std::filesystem::path& file) {
  const GTextPtr uri(g_filename_to_uri(file.c_str(), nullptr, nullptr));
  return uri && openURL(uri.get());
}

}  // namespace quorin
