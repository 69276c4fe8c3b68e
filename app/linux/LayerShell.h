// LayerShell: the library gtk-layer-shell, by which a window stands at an edge of the screen where
// the compositor allows that. It is loaded when it is there, and never needed. Main thread only.
#pragma once

#include <gtk/gtk.h>
#include <optional>

namespace quorin {

class LayerShell {
 public:
  enum class Keyboard { none, exclusive, onDemand };  // as the library numbers them

  // Nothing where the library is missing. `letsGo` tells whether a window that has the keyboard on
  // demand loses it to another one that the user clicks on: compositors that know the mode only by
  // its name keep it there.
  static std::optional<LayerShell> load(bool letsGo);

  bool letsGo() const { return letsGo_; }

  // Before the window is realised: along the right edge, from top to bottom. What the window takes
  // is left free by other windows.
  void standAtTheSide(GtkWindow* window) const;
  void setKeyboard(GtkWindow* window, Keyboard mode) const;

 private:
  LayerShell() = default;

  bool letsGo_ = false;
  void (*init_)(GtkWindow*) = nullptr;
  void (*setNamespace_)(GtkWindow*, const char*) = nullptr;
  void (*setLayer_)(GtkWindow*, int) = nullptr;
  void (*setAnchor_)(GtkWindow*, int, gboolean) = nullptr;
  void (*reserve_)(GtkWindow*) = nullptr;
  void (*setKeyboard_)(GtkWindow*, int) = nullptr;
};

}  // namespace quorin
