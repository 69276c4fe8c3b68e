// MacWorkspace: the other applications, through NSWorkspace and NSRunningApplication. Main thread
// only; it owns the one observation of activations.
#pragma once

#import <AppKit/AppKit.h>

#include "app/shell/ports/Workspace.h"

namespace quorin {

class MacWorkspace : public Workspace {
 public:
  MacWorkspace() = default;
  ~MacWorkspace() override;
  MacWorkspace(const MacWorkspace&) = delete;
  MacWorkspace& operator=(const MacWorkspace&) = delete;

  std::vector<RunningApplication> runningApplications(const std::string& identifier) const override;
  std::optional<RunningApplication> frontmostApplication() const override;
  void activate(const RunningApplication& application) override;
  void observeActivation(ActivationHandler handler) override;
  bool openURL(const std::string& url) override;
  bool openFile(const std::filesystem::path& file) override;

 private:
  void stopObserving();

  id<NSObject> _Nullable observation_ = nil;
};

}  // namespace quorin
