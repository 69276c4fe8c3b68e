// GtkPanelWindow: the panel window port over a GTK window on X11.
//
// Window managers answer late and in their own way: the frame that was asked for counts until the
// window has it or the window manager has had time to answer, and what changes after that is the
// user's doing, unless it is what was asked for. The user's frames are saved in the defaults.
#pragma once

#include <gtk/gtk.h>

#include "app/linux/DesktopGeometry.h"
#include "app/linux/GLibHandles.h"
#include "app/linux/X11Session.h"
#include "app/shell/ports/Defaults.h"
#include "app/shell/ports/PanelWindow.h"

namespace quorin {

class GtkPanelWindow : public PanelWindow {
 public:
  GtkPanelWindow(const PanelWindowOptions& options, X11Session& session, Defaults& defaults);
  ~GtkPanelWindow() override;
  GtkPanelWindow(const GtkPanelWindow&) = delete;
  GtkPanelWindow& operator=(const GtkPanelWindow&) = delete;

  void setDelegate(PanelWindowDelegate* delegate) override { delegate_ = delegate; }
  void setContent(WebView& view) override;  // a WebKitView
  ScreenFrame frame() const override;
  void setFrame(const ScreenFrame& frame) override;
  ScreenSize minimumContentSize() const override { return minimum_; }
  void setWidening(double width, double shift) override;
  bool isVisible() const override;
  bool isKey() const override;
  void orderFront() override;
  void makeKeyAndOrderFront() override;
  void resignKey() override;
  void orderOut() override;
  std::vector<Screen> screens() const override;
  std::optional<Screen> screen() const override;
  std::optional<Screen> mainScreen() const override;

 private:
  static gboolean closeRequested(GtkWidget*, GdkEvent*, gpointer self);
  static gboolean mapped(GtkWidget*, GdkEvent*, gpointer self);
  static gboolean configured(GtkWidget*, GdkEvent*, gpointer self);
  static void activeChanged(GObject*, GParamSpec*, gpointer self);
  static gboolean settled(gpointer self);
  static gboolean save(gpointer self);

  X11Session::WindowId id() const;
  GdkWindow* native() const { return gtk_widget_get_window(GTK_WIDGET(window_)); }
  Decoration decoration() const;
  bool isMapped() const;
  ScreenFrame actualFrame() const;
  ScreenFrame wantedFrame() const;
  void apply();
  void settle();
  void endSettling();
  void saveUsersFrame();
  void stayAboveFullScreen();

  X11Session& session_;
  Defaults& defaults_;
  const std::string frameKey_;
  const ScreenSize minimum_;
  GtkWindow* window_;
  PanelWindowDelegate* delegate_ = nullptr;

  ScreenFrame target_;
  bool targetIsContent_ = false;  // the decoration is still to be added around it
  ScreenFrame rest_;              // where the window came to rest; another frame is the user's
  double widening_ = 0, shift_ = 0;
  bool keyWanted_ = false;  // as soon as the window is mapped
  bool resigned_ = false;   // and the window manager has not yet said so
  GSourceHandle settling_, saving_;
};

}  // namespace quorin
