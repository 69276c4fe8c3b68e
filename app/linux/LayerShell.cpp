#include "app/linux/LayerShell.h"

#include <dlfcn.h>

namespace quorin {

namespace {

constexpr const char* library = "libgtk-layer-shell.so.0";
constexpr int topLayer = 2;  // above windows, below what locks the screen
constexpr int rightEdge = 1, topEdge = 2, bottomEdge = 3;

template <typename Function>
bool find(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(handle, name));
  return function != nullptr;
}

}  // namespace

// The library stays loaded: GTK's objects refer to it.
std::optional<LayerShell> LayerShell::load() {
  void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (!handle) return std::nullopt;
  LayerShell shell;
  const bool whole = find(handle, "gtk_layer_init_for_window", shell.init_) &&
                     find(handle, "gtk_layer_set_namespace", shell.setNamespace_) &&
                     find(handle, "gtk_layer_set_layer", shell.setLayer_) &&
                     find(handle, "gtk_layer_set_anchor", shell.setAnchor_) &&
                     find(handle, "gtk_layer_auto_exclusive_zone_enable", shell.reserve_) &&
                     find(handle, "gtk_layer_set_keyboard_mode", shell.setKeyboard_);
  return whole ? std::optional(shell) : std::nullopt;
}

void LayerShell::standAtTheSide(GtkWindow* window) const {
  init_(window);
  setNamespace_(window, "quorin");
  setLayer_(window, topLayer);
  for (const int edge : {rightEdge, topEdge, bottomEdge}) setAnchor_(window, edge, TRUE);
  reserve_(window);
}

void LayerShell::setKeyboard(GtkWindow* window, Keyboard mode) const {
  setKeyboard_(window, static_cast<int>(mode));
}

}  // namespace quorin
