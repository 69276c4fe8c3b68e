// XDGFolders: the folders of a desktop that follows the XDG base-directory rules. A variable that
// is unset, empty or holds a relative path counts as unset.
//
//   applicationSupport  $XDG_DATA_HOME, else $HOME/.local/share
//   library             $XDG_STATE_HOME, else $HOME/.local/state
//   desktop             XDG_DESKTOP_DIR of user-dirs.dirs, else $HOME/Desktop, where that is a
//                       folder; else $HOME
//   temporary           $TMPDIR, else /tmp
#pragma once

#include "kit/platform/Environment.h"
#include "kit/platform/Folders.h"

namespace quorin {

class XDGFolders : public Folders {
 public:
  explicit XDGFolders(Environment environment) : environment_(std::move(environment)) {}

  std::filesystem::path applicationSupport() const override;
  std::filesystem::path library() const override;
  std::filesystem::path configuration() const;     // $XDG_CONFIG_HOME, else $HOME/.config
  std::filesystem::path desktop() const override;  // reads $XDG_CONFIG_HOME/user-dirs.dirs
  std::filesystem::path temporary() const override;

 private:
  // The variable's value when it is an absolute path, else an empty path.
  std::filesystem::path absolute(const char* variable) const;
  // `relative` in the home folder; empty when there is no home folder.
  std::filesystem::path inHome(const char* relative) const;
  std::filesystem::path configuredDesktop() const;

  Environment environment_;
};

}  // namespace quorin
