// What the core asks of macOS: the user's folders, whether Excel runs, and the versions of both.
// Any thread.
#pragma once

#include "kit/platform/Folders.h"
#include "kit/platform/TargetApplication.h"
#include "kit/support/ProblemReport.h"

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

// Excel's is that of the application in the folder Applications.
SystemVersions macVersions();

}  // namespace quorin
