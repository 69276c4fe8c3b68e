#include "app/linux/UntoldWorkspace.h"

namespace quorin {

std::vector<RunningApplication> UntoldWorkspace::runningApplications(
    const std::string& identifier) const {
  if (identifier != excelIdentifier || !calcRuns_()) return {};
  return {{excelIdentifier, 0, false}};
}

std::optional<RunningApplication> UntoldWorkspace::frontmostApplication() const {
  const std::vector<RunningApplication> calc = runningApplications(excelIdentifier);
  return calc.empty() ? std::nullopt : std::optional(calc.front());
}

}  // namespace quorin
