// UpdateProgress: the small window that says what an update is waiting for. Main thread only.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace quorin {

class UpdateProgress {
 public:
  virtual ~UpdateProgress() = default;

  // Shows the window, or changes what it shows; `done`, from 0 to 1, where that is known.
  virtual void show(const std::string& text, std::optional<double> done) = 0;

  // No window any more. No error when there is none.
  virtual void hide() = 0;

  // Called when the user presses "Cancel" or closes the window, which then hides. One handler; a
  // second call replaces it.
  virtual void onCancel(std::function<void()> handler) = 0;
};

}  // namespace quorin
