#include "app/linux/XWaylandWorkspace.h"

namespace quorin {

bool XWaylandWorkspace::tellsWhoIsInFront() const {
  return x11_.frontmostApplication() || !x11_.runningApplications(excelIdentifier).empty();
}

std::optional<RunningApplication> XWaylandWorkspace::frontmostApplication() const {
  return tellsWhoIsInFront() ? x11_.frontmostApplication() : untold_.frontmostApplication();
}

std::vector<RunningApplication> XWaylandWorkspace::runningApplications(
    const std::string& identifier) const {
  std::vector<RunningApplication> found = x11_.runningApplications(identifier);
  return found.empty() ? untold_.runningApplications(identifier) : found;
}

}  // namespace quorin
