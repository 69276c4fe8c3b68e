// X11Session: what a window manager tells and does for windows of any application, as the extended
// window manager hints define it. Windows of others may vanish between two calls: every question is
// asked with X errors trapped, and a window that is gone has no answer. Main thread only.
#pragma once

#include <functional>
#include <gdk/gdk.h>
#include <optional>
#include <string>
#include <vector>

#include "app/linux/DesktopGeometry.h"

namespace quorin {

class X11Session {
 public:
  using WindowId = unsigned long;  // 0: none

  struct Window {
    std::string windowClass;  // the second text of WM_CLASS
    int processIdentifier = 0;
    WindowId transientFor = 0;
    bool isUtility = false;
    bool isFullScreen = false;
  };

  explicit X11Session(GdkDisplay* display);
  ~X11Session();
  X11Session(const X11Session&) = delete;
  X11Session& operator=(const X11Session&) = delete;

  static WindowId idOf(GdkWindow* window);

  // The window with the keyboard; without a window manager the top-level one that has the focus.
  WindowId activeWindow() const;

  // Called after the active window, or the class of that window, has changed.
  void setOnActiveWindowChanged(std::function<void()> handler) { changed_ = std::move(handler); }

  // All managed windows, the topmost first.
  std::vector<WindowId> windowsFromTop() const;

  std::optional<Window> window(WindowId id) const;

  // Asks the window manager to bring a window forward and give it the keyboard, as a pager does:
  // such requests are granted. Without a window manager the window is given the focus.
  void requestActivation(WindowId id);

  // The window of the last such request, until the active window changes; 0: none.
  WindowId requestedActivation() const { return requested_; }

  // Asks for a window's decoration before it is mapped; the answer comes in time.
  void requestDecoration(WindowId id);
  std::optional<Decoration> decoration(WindowId id) const;

  // Keeps one window above another one, also above a full-screen one; 0: no longer.
  void setTransientFor(WindowId id, WindowId owner);

 private:
  static GdkFilterReturn filter(void* xevent, GdkEvent*, gpointer self);
  std::vector<unsigned long> property(WindowId id, const char* name, unsigned long type) const;
  bool hasAtom(WindowId id, const char* name, const char* value) const;
  bool hasWindowManager() const;
  WindowId focusedTopLevel() const;
  void watchActiveWindow();
  void send(WindowId id, const char* message, long first, long second);

  GdkDisplay* display_;
  GdkWindow* root_;
  GdkWindow* clock_;  // where the server's time is asked for
  WindowId requested_ = 0;
  WindowId watched_ = 0;  // the active window
  std::function<void()> changed_;
};

}  // namespace quorin
