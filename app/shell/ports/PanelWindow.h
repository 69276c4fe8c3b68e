// PanelWindow: the floating, non-activating utility window of the application, without any
// behaviour of its own: titled, closable, resizable, above other windows, on all desktops, beside
// full-screen windows, not hidden when another application comes forward, never released by
// closing. Frames are outer frames in screen points, bottom-left origin. Main thread only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/shapes/ScreenGeometry.h"

namespace quorin {

class WebView;

struct PanelWindowOptions {
  std::string title;
  ScreenFrame contentFrame;  // of the content, without title bar and borders
  ScreenSize minimumContentSize;
  // The defaults hold the frame under "NSWindow Frame " + this name once the user has moved or
  // resized the window; the window then starts with it, on a screen that still exists.
  std::string frameAutosaveName;
};

// One screen: all of it, and what menu bars and docks leave free.
struct Screen {
  ScreenFrame frame, visibleFrame;
  bool operator==(const Screen&) const = default;
};

class PanelWindowDelegate {
 public:
  virtual ~PanelWindowDelegate() = default;
  // The user pressed the close button. The window itself does nothing about it.
  virtual void panelWindowCloseRequested() = 0;
};

class PanelWindow {
 public:
  virtual ~PanelWindow() = default;

  virtual void setDelegate(PanelWindowDelegate* delegate) = 0;  // none while null

  // The view fills the content and follows its size. It must outlive the window.
  virtual void setContent(WebView& view) = 0;

  virtual ScreenFrame frame() const = 0;
  // At once, without animation, whether the window is visible or not.
  virtual void setFrame(const ScreenFrame& frame) = 0;
  virtual ScreenSize minimumContentSize() const = 0;

  // How much wider than the user chose, and how far moved to the left of it, the window is just
  // now. Where this class saves the frame, it saves it without the two; a system that saves frames
  // by itself may have no use for it.
  virtual void setWidening(double width, double shift) = 0;

  virtual bool isVisible() const = 0;
  virtual bool isKey() const = 0;  // has the keyboard

  virtual void orderFront() = 0;            // shows without taking the keyboard
  virtual void makeKeyAndOrderFront() = 0;  // shows and takes the keyboard
  virtual void resignKey() = 0;             // gives the keyboard up, stays visible
  virtual void orderOut() = 0;              // hides, without animation

  // All screens, the one with the menu bar first; none when there is no display.
  virtual std::vector<Screen> screens() const = 0;
  virtual std::optional<Screen> screen() const = 0;      // the one that holds most of the window
  virtual std::optional<Screen> mainScreen() const = 0;  // the one with the key window
};

}  // namespace quorin
