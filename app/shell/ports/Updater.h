// Updater: looks for a newer version and installs it, in windows of its own. Main thread only.
#pragma once

#include <optional>
#include <string>

namespace quorin {

class Updater {
 public:
  virtual ~Updater() = default;

  // Why there are no updates, in a few words; none when it can look for them.
  virtual std::optional<std::string> unavailable() const = 0;

  virtual void checkForUpdates() = 0;
};

}  // namespace quorin
