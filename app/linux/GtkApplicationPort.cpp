#include "app/linux/GtkApplicationPort.h"

#include <glib-unix.h>
#include <gtk/gtk.h>

#include "app/shell/EndingSignals.h"

namespace quorin {

GtkApplicationPort::GtkApplicationPort() {
  for (const int number : endingSignals())
    signals_.emplace_back(g_unix_signal_add(number, signalled, this));
}

void GtkApplicationPort::run() {
  g_idle_add_full(G_PRIORITY_DEFAULT, launch, this, nullptr);
  gtk_main();
}

gboolean GtkApplicationPort::launch(gpointer self) {
  static_cast<GtkApplicationPort*>(self)->delegate_->applicationDidFinishLaunching();
  return G_SOURCE_REMOVE;
}

void GtkApplicationPort::terminate() {
  if (terminating_) return;
  terminating_ = true;
  g_idle_add_full(G_PRIORITY_DEFAULT, end, this, nullptr);
}

gboolean GtkApplicationPort::end(gpointer self) {
  static_cast<GtkApplicationPort*>(self)->delegate_->applicationWillTerminate();
  gtk_main_quit();
  return G_SOURCE_REMOVE;
}

gboolean GtkApplicationPort::signalled(gpointer self) {
  static_cast<GtkApplicationPort*>(self)->terminate();
  return G_SOURCE_CONTINUE;
}

}  // namespace quorin
