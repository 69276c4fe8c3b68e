// PrivateTarget: the private office of one user folder as the target application. Any thread; looks
// at the system's processes and asks the office nothing.
#pragma once

#include <filesystem>
#include <string>

#include "kit/platform/TargetApplication.h"

namespace quorin::ctl {

class PrivateTarget : public TargetApplication {
 public:
  // `folder` is the office's own, which holds its user folder.
  explicit PrivateTarget(const std::filesystem::path& folder);
  bool isRunning() override;

 private:
  const std::string folder_;  // as it begins in the office's arguments
};

}  // namespace quorin::ctl
