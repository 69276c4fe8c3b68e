// What "Excel is running" means for each kind of run. Any thread; both look at the system's
// processes and ask the office nothing.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>

#include "host/calc/office/OfficeDiscovery.h"
#include "kit/platform/TargetApplication.h"

namespace quorin::ctl {

// The private office that lives in a folder.
class PrivateTarget : public TargetApplication {
 public:
  explicit PrivateTarget(const std::filesystem::path& folder);
  bool isRunning() override;

 private:
  const std::string folder_;  // as the office's own arguments begin it
  std::mutex mutex_;
  pid_t found_ = 0;
};

// The user's own Calc.
class RunningTarget : public TargetApplication {
 public:
  explicit RunningTarget(std::shared_ptr<host::calc::OfficeDiscovery> discovery)
      : discovery_(std::move(discovery)) {}
  bool isRunning() override { return discovery_->runningCalc().has_value(); }

 private:
  const std::shared_ptr<host::calc::OfficeDiscovery> discovery_;
};

}  // namespace quorin::ctl
