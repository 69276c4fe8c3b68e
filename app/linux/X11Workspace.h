// X11Workspace: the workspace port over X11. LibreOffice Calc goes by Excel's identifier, so that
// the portable code has one name for the spreadsheet; other applications go by their window class.
//
// The panel itself never comes to the front as an application: while it has the keyboard, the
// application that had it before counts as the one in front.
#pragma once

#include "app/linux/GLibHandles.h"
#include "app/linux/GtkWorkspace.h"
#include "app/linux/X11Session.h"

namespace quorin {

class X11Workspace : public GtkWorkspace {
 public:
  explicit X11Workspace(X11Session& session);
  ~X11Workspace() override;
  X11Workspace(const X11Workspace&) = delete;
  X11Workspace& operator=(const X11Workspace&) = delete;

  std::vector<RunningApplication> runningApplications(const std::string& identifier) const override;
  std::optional<RunningApplication> frontmostApplication() const override;
  void activate(const RunningApplication& application) override;
  void observeActivation(ActivationHandler handler) override { handler_ = std::move(handler); }

 private:
  using WindowId = X11Session::WindowId;
  struct Front {
    RunningApplication application;
    WindowId window = 0;
  };

  std::optional<RunningApplication> applicationOf(WindowId id) const;
  bool isPanel(WindowId id) const;
  bool isOpening(WindowId id) const;
  std::optional<Front> front(WindowId active) const;
  void activeWindowChanged();
  static gboolean settled(gpointer self);

  X11Session& session_;
  ActivationHandler handler_;
  mutable std::optional<Front> front_;  // the last one that was not the panel
  std::optional<RunningApplication> told_;
  GSourceHandle settling_;
};

}  // namespace quorin
