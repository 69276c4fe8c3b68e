// FolderLock: one process at a time works in a data folder. The lock is the system's own, on a file
// of the folder, and goes with the process however that ends; the file stays.
#pragma once

#include <filesystem>
#include <optional>

namespace quorin {

class FolderLock {
 public:
  // None when another process holds the folder. Makes the folder where it is missing, and keeps
  // it for the user alone. Throws FileError when folder or file cannot be made.
  static std::optional<FolderLock> acquire(const std::filesystem::path& folder);

  FolderLock(FolderLock&& other) noexcept;
  FolderLock& operator=(FolderLock&& other) noexcept;
  ~FolderLock();

 private:
  explicit FolderLock(int descriptor) : descriptor_(descriptor) {}

  int descriptor_ = -1;
};

}  // namespace quorin
