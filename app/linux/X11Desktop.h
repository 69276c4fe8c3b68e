// X11Desktop: an X11 session, or in a Wayland session its X11 part.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/linux/Desktop.h"
#include "app/linux/PortalHotKeys.h"
#include "app/linux/X11HotKeys.h"
#include "app/linux/X11UserInput.h"
#include "app/linux/X11Workspace.h"
#include "app/linux/XWaylandWorkspace.h"

namespace quorin {

// The keys of windows of X11's, and by the portal those of all: a key comes from one of the two.
class TwoHotKeyServices : public HotKeyService {
 public:
  TwoHotKeyServices(X11HotKeys& x11, std::function<void(const std::string&)> unavailable)
      : x11_(x11), portal_(std::move(unavailable)) {}

  Status install(Handler handler) override;
  Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) override;
  void remove(HotKeyID id) override;

 private:
  X11HotKeys& x11_;
  PortalHotKeys portal_;
};

class X11Desktop : public Desktop {
 public:
  // In a Wayland session Calc may be none of X11's programs; `calcRuns` then tells whether it is
  // there. `withoutHotKeys` is told when only windows of X11's can give us their keys.
  struct WaylandSession {
    std::function<bool()> calcRuns;
    std::function<void(const std::string&)> withoutHotKeys;
  };

  // After GTK has been initialised on an X11 display.
  explicit X11Desktop(std::optional<WaylandSession> wayland = std::nullopt);

  Workspace& workspace() override;
  HotKeyService* hotKeys() override;
  UserInput* userInput() override { return &userInput_; }
  X11Session* x11() override { return &session_; }
  std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options,
                                               Defaults& defaults) override;
  std::string note() const override;

 private:
  X11Session session_;
  X11Workspace workspace_{session_};
  X11HotKeys hotKeys_;
  X11UserInput userInput_;
  // In a Wayland session.
  std::unique_ptr<XWaylandWorkspace> shared_;
  std::unique_ptr<TwoHotKeyServices> twoHotKeys_;
};

}  // namespace quorin
