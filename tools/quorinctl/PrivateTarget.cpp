#include "tools/quorinctl/PrivateTarget.h"

#include <algorithm>

#include "host/calc/OfficeFiles.h"
#include "host/calc/OfficeProcess.h"

namespace quorin::ctl {

PrivateTarget::PrivateTarget(const std::filesystem::path& folder)
    : folder_(host::calc::fileUrl(folder) + "/") {}

bool PrivateTarget::isRunning() {
  const auto processes = host::calc::officeProcesses();
  return std::any_of(processes.begin(), processes.end(), [this](const auto& process) {
    return process.userInstallation().starts_with(folder_);
  });
}

}  // namespace quorin::ctl
