// WaylandPanelWindow: the panel window port over a GTK window on Wayland. With a layer shell it
// stands along the right edge of the screen, and other windows leave it room; else it is an
// ordinary window, which the compositor places. Where it is nobody tells, so no frame is ever
// saved; of a frame that is asked for the width counts, and of an ordinary window the height.
#pragma once

#include <functional>
#include <gtk/gtk.h>
#include <optional>

#include "app/linux/GLibHandles.h"
#include "app/linux/LayerShell.h"
#include "app/shell/ports/PanelWindow.h"

namespace quorin {

class WaylandPanelWindow : public PanelWindow {
 public:
  // Bringing our own window forward, and the one that had the keyboard before it, where the
  // compositor can be asked to.
  struct Keyboard {
    std::function<void()> take, giveBack;
  };

  WaylandPanelWindow(const PanelWindowOptions& options, std::optional<LayerShell> layer,
                     Keyboard keyboard);
  ~WaylandPanelWindow() override;
  WaylandPanelWindow(const WaylandPanelWindow&) = delete;
  WaylandPanelWindow& operator=(const WaylandPanelWindow&) = delete;

  void setDelegate(PanelWindowDelegate* delegate) override { delegate_ = delegate; }
  void setContent(WebView& view) override;  // a WebKitView
  ScreenFrame frame() const override;
  void setFrame(const ScreenFrame& frame) override;
  ScreenSize minimumContentSize() const override { return minimum_; }
  void setWidening(double, double) override {}
  bool isVisible() const override;
  bool isKey() const override;
  void orderFront() override;
  void makeKeyAndOrderFront() override;
  void resignKey() override;
  void orderOut() override;
  std::vector<Screen> screens() const override;
  std::optional<Screen> screen() const override { return mainScreen(); }
  std::optional<Screen> mainScreen() const override;

 private:
  static gboolean closeRequested(GtkWidget*, GdkEvent*, gpointer self);
  static void closeClicked(GtkButton*, gpointer self);
  static gboolean settled(gpointer self);
  static void activeChanged(GObject*, GParamSpec*, gpointer self);
  static gboolean pressed(GtkWidget*, GdkEvent*, gpointer self);
  static gboolean pointerLeft(GtkWidget*, GdkEventCrossing* event, gpointer self);

  void addTitleBar();
  void setKeyboardMode(LayerShell::Keyboard mode);

  const ScreenSize minimum_;
  const std::optional<LayerShell> layer_;
  const Keyboard keyboard_;
  GtkWindow* window_;
  GtkBox* box_;
  GtkWidget* content_ = nullptr;  // the view's own
  PanelWindowDelegate* delegate_ = nullptr;
  int width_, height_;
  bool resigned_ = false;  // and the compositor has not yet said so
  GSourceHandle unasked_;  // shown without the keyboard, and the compositor may yet give it
  bool clicked_ = false;   // that is how it has come by the keyboard
};

}  // namespace quorin
