// Folders: where this user's files belong. Any thread. A folder need not exist yet: who writes
// there makes it. An empty path: the platform has no such folder.
#pragma once

#include <filesystem>

namespace quorin {

class Folders {
 public:
  virtual ~Folders() = default;
  virtual std::filesystem::path applicationSupport() const = 0;  // holds Quorin/config.json
  virtual std::filesystem::path library() const = 0;             // holds Logs/
  virtual std::filesystem::path desktop() const = 0;
  virtual std::filesystem::path temporary() const = 0;
};

}  // namespace quorin
