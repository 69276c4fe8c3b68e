#include "app/linux/GtkApplicationPort.h"

#include <glib-unix.h>
#include <gtk/gtk.h>
#include <utility>

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
  g_idle_add_full(G_PRIORITY_DEFAULT, ask, this, nullptr);
}

gboolean GtkApplicationPort::ask(gpointer data) {
  auto& self = *static_cast<GtkApplicationPort*>(data);
  self.patience_.reset(g_timeout_add(ApplicationDelegate::longestDelay.count(), end, data));
  self.delegate_->applicationShouldTerminate([&self] { self.goOn(); });
  return G_SOURCE_REMOVE;
}

// After what is still to be drawn.
void GtkApplicationPort::goOn() {
  if (std::exchange(goesOn_, true)) return;
  end_.reset(g_idle_add(end, this));
}

gboolean GtkApplicationPort::end(gpointer data) {
  auto& self = *static_cast<GtkApplicationPort*>(data);
  self.goesOn_ = true;
  self.patience_.reset();
  self.end_.reset();
  self.delegate_->applicationWillTerminate();
  gtk_main_quit();
  return G_SOURCE_REMOVE;
}

gboolean GtkApplicationPort::signalled(gpointer self) {
  static_cast<GtkApplicationPort*>(self)->terminate();
  return G_SOURCE_CONTINUE;
}

}  // namespace quorin
