#include "kit/support/FolderLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "kit/support/FileSystem.h"

namespace quorin {

std::optional<FolderLock> FolderLock::acquire(const std::filesystem::path& folder) {
  FileSystem::real().makeFolders(folder);
  closeToOthers(folder);
  const std::filesystem::path path = folder / "lock";
  // Not handed on to programs that this one starts: they would keep the folder locked.
  FolderLock lock(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (lock.descriptor_ < 0) throw FileError(errno, "open", path);
  while (flock(lock.descriptor_, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) return std::nullopt;
    if (errno != EINTR) throw FileError(errno, "lock", path);
  }
  return lock;
}

FolderLock::FolderLock(FolderLock&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

FolderLock& FolderLock::operator=(FolderLock&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

FolderLock::~FolderLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace quorin
