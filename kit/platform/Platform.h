// Platform: the few things the core asks of the system, put together by whoever starts it (`main`,
// a tool, a test) and installed before other threads start.
#pragma once

#include <memory>

#include "kit/platform/Folders.h"
#include "kit/platform/TargetApplication.h"

namespace quorin {

struct Platform {
  std::unique_ptr<Folders> folders;
  std::unique_ptr<TargetApplication> target;

  // Makes `platform` the installed one and gives back the one before; a null pointer removes it.
  static std::unique_ptr<Platform> install(std::unique_ptr<Platform> platform);
};

// The installed platform's parts. Stops the process when there is none.
Folders& platformFolders();
TargetApplication& targetApplication();

}  // namespace quorin
