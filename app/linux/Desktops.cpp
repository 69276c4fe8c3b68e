#include "app/linux/Desktops.h"

#include <gtk/gtk.h>

#include "app/linux/ForeignToplevels.h"
#include "app/linux/WaylandDesktop.h"
#include "app/linux/X11Desktop.h"
#include "kit/platform/Platform.h"
#include "kit/support/DiagLog.h"

namespace quorin {

namespace {

constexpr const char* program = "quorin";
constexpr const char* layerShell = "zwlr_layer_shell_v1";

std::string valueOf(const Environment& environment, const char* name) {
  const auto found = environment.find(name);
  return found == environment.end() ? std::string() : found->second;
}

// Whatever the session asks its programs to use.
bool initialiseOn(const char* backend) {
  g_setenv("GDK_BACKEND", backend, TRUE);
  gdk_set_allowed_backends(backend);
  return gtk_init_check(nullptr, nullptr) != FALSE;
}

bool calcRuns() {
  return targetApplication().isRunning();
}

void tellWithoutHotKeys(const std::string& reason) {
  DiagLog::shared().log("HOTKEY", "no keys that work in every window: " + reason +
                                      "; the desktop's settings can bind keys to commands such as "
                                      "quorin --show tree and quorin --step 1");
}

}  // namespace

std::unique_ptr<Desktop> makeDesktop(const Environment& environment) {
  std::unique_ptr<WaylandConnection> connection;
  if (!valueOf(environment, "WAYLAND_DISPLAY").empty() &&
      valueOf(environment, "GDK_BACKEND") != "x11") {
    connection = WaylandConnection::open();
  }
  const bool hasX11 = !valueOf(environment, "DISPLAY").empty();
  std::optional<LayerShell> layer;
  if (connection && connection->has(layerShell)) layer = LayerShell::load();
  const bool listed = connection && connection->has(foreignToplevels::managerName);
  if (connection && (layer || listed || !hasX11)) {
    g_set_prgname(program);
    if (!initialiseOn("wayland")) return nullptr;
    return std::make_unique<WaylandDesktop>(std::move(connection), layer, program, calcRuns,
                                            tellWithoutHotKeys);
  }
  if (!initialiseOn("x11")) return nullptr;
  if (!connection) return std::make_unique<X11Desktop>();
  return std::make_unique<X11Desktop>(X11Desktop::WaylandSession{calcRuns, tellWithoutHotKeys});
}

}  // namespace quorin
