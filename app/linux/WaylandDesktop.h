// WaylandDesktop: a session in which the panel is a window of Wayland's. Which program is in front
// is known where the compositor lists the windows of all.
#pragma once

#include <functional>
#include <memory>

#include "app/linux/Desktop.h"
#include "app/linux/LayerShell.h"
#include "app/linux/ListedWorkspace.h"
#include "app/linux/PortalHotKeys.h"
#include "app/linux/WaylandWindowList.h"

namespace quorin {

class WaylandDesktop : public Desktop {
 public:
  // After GTK has been initialised on a Wayland display, with `program` as its name.
  WaylandDesktop(std::unique_ptr<WaylandConnection> connection, std::optional<LayerShell> layer,
                 const std::string& program, std::function<bool()> calcRuns,
                 std::function<void(const std::string&)> withoutHotKeys);

  Workspace& workspace() override { return *workspace_; }
  HotKeyService* hotKeys() override { return &hotKeys_; }
  UserInput* userInput() override { return nullptr; }
  X11Session* x11() override { return nullptr; }
  std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options,
                                               Defaults& defaults) override;
  std::string note() const override;

 private:
  const std::unique_ptr<WaylandConnection> connection_;
  const std::unique_ptr<WaylandWindowList> list_;  // may be none
  const std::optional<LayerShell> layer_;
  std::unique_ptr<Workspace> workspace_;
  PortalHotKeys hotKeys_;
  ListedWorkspace* listed_ = nullptr;  // the workspace, where there is a list
};

}  // namespace quorin
