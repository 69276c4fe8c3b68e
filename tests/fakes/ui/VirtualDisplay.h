// VirtualDisplay: an X server of the test's own, with or without a window manager. This process and
// the programs it starts use it while it lives.
#pragma once

#include <memory>
#include <signal.h>
#include <string>
#include <vector>

#include "tests/fakes/ui/ChildProcess.h"

namespace quorin::ui {

struct DisplayOptions {
  int width = 1440, height = 900;
  bool windowManager = true;
};

class VirtualDisplay {
 public:
  explicit VirtualDisplay(const DisplayOptions& options);
  ~VirtualDisplay();

  const std::string& name() const { return name_; }
  void startWindowManager();
  void stopWindowManager() { windowManager_.reset(); }
  // For a while it answers nothing.
  void pauseWindowManager() const { windowManager_->signal(SIGSTOP); }
  void resumeWindowManager() const { windowManager_->signal(SIGCONT); }

  // Keys, clicks and windows, as xdotool's arguments say. False when that fails.
  bool xdotool(const std::vector<std::string>& arguments) const;

  // Everything on the screen, as a PNG file.
  void screenshot(const std::string& file) const;

 private:
  std::string folder_;
  std::string name_;
  std::unique_ptr<ChildProcess> server_, windowManager_;
};

}  // namespace quorin::ui
