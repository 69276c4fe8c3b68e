// SaveDialog: the system's dialog in which the user says where a file is to be saved. Main thread
// only.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorin {

class SaveDialog {
 public:
  // None: the user wants no file. The user has agreed to replace a file that is there.
  using Answer = std::function<void(const std::optional<std::filesystem::path>& file)>;

  virtual ~SaveDialog() = default;

  // Shows the dialog, with a file name that the user may change. One at a time. The answer comes
  // on the main thread: inside this call where the platform's dialogs wait for the user, later
  // where they do not.
  virtual void ask(const std::string& name, Answer answer) = 0;
};

}  // namespace quorin
