// GtkWorkspace: the half of the workspace port that is the same in every session: files and
// addresses go to the programs that the user chose for them.
#pragma once

#include "app/shell/ports/Workspace.h"

namespace quorin {

class GtkWorkspace : public Workspace {
 public:
  bool openURL(const std::string& url) override;
  bool openFile(const std::filesystem::path& file) override;
};

}  // namespace quorin
