#include "tools/quorinctl/Targets.h"

#include <algorithm>

#include "host/calc/office/OfficeProcess.h"
#include "host/calc/uno/OfficeFiles.h"

namespace quorin::ctl {

PrivateTarget::PrivateTarget(const std::filesystem::path& folder)
    : folder_(host::calc::fileUrl(folder) + "/") {}

bool PrivateTarget::isRunning() {
  const std::lock_guard lock(mutex_);
  if (found_ != 0 && std::filesystem::exists("/proc/" + std::to_string(found_))) return true;
  const auto processes = host::calc::officeProcesses();
  const auto ours = std::find_if(processes.begin(), processes.end(), [this](const auto& process) {
    return process.userInstallation().starts_with(folder_);
  });
  found_ = ours == processes.end() ? 0 : ours->id;
  return found_ != 0;
}

}  // namespace quorin::ctl
