// LayerShell: the library gtk-layer-shell, by which a window stands at an edge of the screen where
// the compositor allows that. It is loaded when it is there, and never needed. Main thread only.
#pragma once

#include <gtk/gtk.h>
#include <optional>

namespace quorin {

class LayerShell {
 public:
  // As the library numbers them. Compositors differ in what they make of its third, "on demand":
  // sway 1.7 takes it for the second.
  enum class Keyboard { none, exclusive };

  // Nothing where the library is missing.
  static std::optional<LayerShell> load();

  // Before the window is realised: along the right edge, from top to bottom. What the window takes
  // is left free by other windows.
  void standAtTheSide(GtkWindow* window) const;
  void setKeyboard(GtkWindow* window, Keyboard mode) const;

 private:
  LayerShell() = default;

  void (*init_)(GtkWindow*) = nullptr;
  void (*setNamespace_)(GtkWindow*, const char*) = nullptr;
  void (*setLayer_)(GtkWindow*, int) = nullptr;
  void (*setAnchor_)(GtkWindow*, int, gboolean) = nullptr;
  void (*reserve_)(GtkWindow*) = nullptr;
  void (*setKeyboard_)(GtkWindow*, int) = nullptr;
};

}  // namespace quorin
