#include "app/linux/GtkApplicationPort.h"

#include <csignal>
#include <glib-unix.h>
#include <gtk/gtk.h>

namespace quorin {

namespace {

// Whoever started the program may want it to outlive the terminal, as nohup does.
bool isIgnored(int signal) {
  struct sigaction current {};
  return sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

}  // namespace

GtkApplicationPort::GtkApplicationPort() {
  interrupt_.reset(g_unix_signal_add(SIGINT, signalled, this));
  termination_.reset(g_unix_signal_add(SIGTERM, signalled, this));
  if (!isIgnored(SIGHUP)) hangup_.reset(g_unix_signal_add(SIGHUP, signalled, this));
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
