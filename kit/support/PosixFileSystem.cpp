// The real file system.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "kit/support/FileSystem.h"

namespace quorin {
namespace fs = std::filesystem;
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int number() const { return number_; }
  int release() { return std::exchange(number_, -1); }

 private:
  int number_;
};

Descriptor open(const fs::path& path, int flags, unsigned mode, const char* action) {
  int number;
  do {
    number = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (number < 0 && errno == EINTR);
  if (number < 0) throw FileError(errno, action, path);
  return Descriptor(number);
}

// Opened without waiting, since a pipe or a device may stand where a file is expected.
Descriptor openRegular(const fs::path& path, int flags, unsigned mode, const char* action) {
  Descriptor file = open(path, flags | O_NONBLOCK, mode, action);
  struct stat info {};
  if (::fstat(file.number(), &info) != 0) throw FileError(errno, action, path);
  if (S_ISDIR(info.st_mode)) throw FileError(EISDIR, action, path);
  if (!S_ISREG(info.st_mode)) throw FileError(EINVAL, action, path);
  return file;
}

int syncToDisk(int number) {
#ifdef F_FULLFSYNC
  // fsync hands the data to the drive there, which may still keep it in a cache.
  if (::fcntl(number, F_FULLFSYNC) == 0) return 0;
#endif
  return ::fsync(number);
}

class PosixFile : public WritableFile {
 public:
  PosixFile(Descriptor descriptor, fs::path path)
      : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

  void append(std::string_view data) override {
    while (!data.empty()) {
      const auto written = ::write(descriptor_.number(), data.data(), data.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) throw FileError(errno, "write", path_);
      data.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void sync() override {
    if (syncToDisk(descriptor_.number()) != 0) throw FileError(errno, "sync", path_);
  }

  void close() override {
    if (::close(descriptor_.release()) != 0 && errno != EINTR) {
      throw FileError(errno, "close", path_);
    }
  }

 private:
  Descriptor descriptor_;
  fs::path path_;
};

class PosixFileSystem : public FileSystem {
 public:
  std::optional<FileStatus> status(const fs::path& path) override {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
      if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
      throw FileError(errno, "look at", path);
    }
    FileStatus status;
    status.kind = S_ISREG(info.st_mode)   ? FileStatus::Kind::regular
                  : S_ISDIR(info.st_mode) ? FileStatus::Kind::folder
                                          : FileStatus::Kind::other;
    status.size = static_cast<std::uint64_t>(info.st_size);
    status.mode = info.st_mode & 07777;
    status.writable = ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
    return status;
  }

  std::string read(const fs::path& path, std::uint64_t offset, std::size_t count) override {
    const Descriptor file = openRegular(path, O_RDONLY, 0, "read");
    std::string data;
    constexpr std::size_t piece = 256 * 1024;
    while (data.size() < count) {
      const std::size_t had = data.size();
      data.resize(std::min(count, had + piece));
      const auto got = ::pread(file.number(), data.data() + had, data.size() - had,
                               static_cast<off_t>(offset + had));
      const int error = errno;
      data.resize(had + (got > 0 ? static_cast<std::size_t>(got) : 0));
      if (got < 0 && error == EINTR) continue;
      if (got < 0) throw FileError(error, "read", path);
      if (got == 0) break;
    }
    return data;
  }

  // Those that are missing, for this user alone whatever the umask.
  void makeFolders(const fs::path& path) override {
    std::error_code error;
    if (path.empty() || fs::is_directory(path, error)) return;
    if (path.has_parent_path() && path.parent_path() != path) makeFolders(path.parent_path());
    if (::mkdir(path.c_str(), S_IRWXU) == 0) return;
    const int reason = errno;
    if (reason != EEXIST || !fs::is_directory(path, error)) {
      throw FileError(reason == EEXIST ? ENOTDIR : reason, "make the folder", path);
    }
  }

  std::unique_ptr<WritableFile> create(const fs::path& path, unsigned mode) override {
    Descriptor file = open(path, O_WRONLY | O_CREAT | O_EXCL, 0600, "create");
    if (mode != 0600 && ::fchmod(file.number(), static_cast<mode_t>(mode)) != 0) {
      const int error = errno;
      ::unlink(path.c_str());
      throw FileError(error, "set the permissions of", path);
    }
    return std::make_unique<PosixFile>(std::move(file), path);
  }

  std::unique_ptr<WritableFile> openToAppend(const fs::path& path) override {
    return std::make_unique<PosixFile>(
        openRegular(path, O_WRONLY | O_APPEND | O_CREAT, 0600, "open"), path);
  }

  std::unique_ptr<WritableFile> openToOverwrite(const fs::path& path) override {
    return std::make_unique<PosixFile>(openRegular(path, O_WRONLY, 0, "open"), path);
  }

  void truncate(const fs::path& path, std::uint64_t size) override {
    if (::truncate(path.c_str(), static_cast<off_t>(size)) != 0) {
      throw FileError(errno, "truncate", path);
    }
  }

  void rename(const fs::path& from, const fs::path& to) override {
    if (::rename(from.c_str(), to.c_str()) != 0) throw FileError(errno, "replace", to);
  }

  void syncFolder(const fs::path& path) override {
    const Descriptor folder = open(path, O_RDONLY | O_DIRECTORY, 0, "open the folder");
    // Some file systems have no such thing for folders and say so.
    if (::fsync(folder.number()) != 0 && errno != EINVAL && errno != ENOTSUP) {
      throw FileError(errno, "sync the folder", path);
    }
  }

  void remove(const fs::path& path) override {
    if (::unlink(path.c_str()) != 0) throw FileError(errno, "remove", path);
  }
};

}  // namespace

void closeToOthers(const fs::path& folder) {
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0 || info.st_uid != ::geteuid()) return;
  if (!S_ISDIR(info.st_mode) || (info.st_mode & (S_IRWXG | S_IRWXO)) == 0) return;
  static_cast<void>(::chmod(folder.c_str(), info.st_mode & S_IRWXU));
}

FileSystem& FileSystem::real() {
  static PosixFileSystem fileSystem;
  return fileSystem;
}

}  // namespace quorin
