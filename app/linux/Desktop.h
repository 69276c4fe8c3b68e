// Desktop: what depends on the window system of the session. One of X11Desktop and WaylandDesktop,
// made by `makePlatform`, owned by the platform. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "app/linux/X11Session.h"
#include "app/shell/ports/Defaults.h"
#include "app/shell/ports/HotKeyService.h"
#include "app/shell/ports/PanelWindow.h"
#include "app/shell/ports/UserInput.h"
#include "app/shell/ports/Workspace.h"

namespace quorin {

class Desktop {
 public:
  virtual ~Desktop() = default;

  virtual Workspace& workspace() = 0;
  virtual HotKeyService* hotKeys() = 0;  // none where there is no such service
  virtual UserInput* userInput() = 0;    // none where nobody tells
  virtual X11Session* x11() = 0;         // none where windows are not X11's
  virtual std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options,
                                                       Defaults& defaults) = 0;

  // What the user should know of how far this session lets the panel go; empty: nothing.
  virtual std::string note() const = 0;
};

}  // namespace quorin
