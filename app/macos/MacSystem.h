// What the core asks of macOS: the user's folders and whether Excel runs. Any thread.
#pragma once

#include "kit/platform/Folders.h"
#include "kit/platform/TargetApplication.h"

namespace quorin {

class MacFolders : public Folders {
 public:
  std::filesystem::path applicationSupport() const override;
  std::filesystem::path library() const override;
  std::filesystem::path desktop() const override;
  std::filesystem::path temporary() const override;
};

class MacTargetApplication : public TargetApplication {
 public:
  bool isRunning() override;
};

}  // namespace quorin
