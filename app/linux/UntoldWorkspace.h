// UntoldWorkspace: the workspace port of a session in which nobody tells which program is in front.
// Calc counts as in front as long as it runs. Main thread only.
#pragma once

#include "app/linux/GtkWorkspace.h"

namespace quorin {

class UntoldWorkspace : public GtkWorkspace {
 public:
  explicit UntoldWorkspace(std::function<bool()> calcRuns) : calcRuns_(std::move(calcRuns)) {}

  bool alwaysTellsWhoIsInFront() const override { return false; }
  bool tellsWhoIsInFront() const override { return false; }
  std::vector<RunningApplication> runningApplications(const std::string& identifier) const override;
  std::optional<RunningApplication> frontmostApplication() const override;
  void activate(const RunningApplication&) override {}
  void observeActivation(ActivationHandler) override {}

 private:
  const std::function<bool()> calcRuns_;
};

}  // namespace quorin
