// XWaylandWorkspace: the workspace port of X11's part of a Wayland session. Of windows that are not
// X11's nobody tells. A Calc without a window there counts as in front as long as it runs and no
// other program of X11's is in front.
#pragma once

#include "app/linux/UntoldWorkspace.h"
#include "app/linux/X11Workspace.h"

namespace quorin {

class XWaylandWorkspace : public GtkWorkspace {
 public:
  // `x11` must outlive the object.
  XWaylandWorkspace(X11Workspace& x11, std::function<bool()> calcRuns)
      : x11_(x11), untold_(std::move(calcRuns)) {}

  bool alwaysTellsWhoIsInFront() const override { return false; }
  bool tellsWhoIsInFront() const override;
  std::vector<RunningApplication> runningApplications(const std::string& identifier) const override;
  std::optional<RunningApplication> frontmostApplication() const override;
  void activate(const RunningApplication& application) override { x11_.activate(application); }
  void observeActivation(ActivationHandler handler) override {
    x11_.observeActivation(std::move(handler));
  }

 private:
  X11Workspace& x11_;
  const UntoldWorkspace untold_;
};

}  // namespace quorin
