#include "kit/platform/Platform.h"

#include <utility>

#include "kit/platform/Fatal.h"

namespace quorin {
namespace {

std::unique_ptr<Platform>& installed() {
  static std::unique_ptr<Platform> platform;
  return platform;
}

}  // namespace

std::unique_ptr<Platform> Platform::install(std::unique_ptr<Platform> platform) {
  return std::exchange(installed(), std::move(platform));
}

Folders& platformFolders() {
  if (!installed() || !installed()->folders) {
    fatal("no platform with folders is installed; Platform::install comes first");
  }
  return *installed()->folders;
}

TargetApplication& targetApplication() {
  if (!installed() || !installed()->target) {
    fatal("no platform with a target application is installed; Platform::install comes first");
  }
  return *installed()->target;
}

}  // namespace quorin
