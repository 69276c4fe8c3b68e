// FileSystem: what the system does to files, one step a call, so that tests can make every step
// fail in turn or end the process there. Any thread. Every step throws FileError.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace quorin {

class FileError : public std::system_error {
 public:
  // "cannot write /path/config.json: No space left on device"
  FileError(int number, const std::string& action, const std::filesystem::path& path)
      : std::system_error(number, std::generic_category(),
                          "cannot " + action + " " + path.string()) {}
};

// A file open for writing; destruction closes it without a word.
class WritableFile {
 public:
  virtual ~WritableFile() = default;
  virtual void append(std::string_view data) = 0;  // all of it, or an error
  virtual void sync() = 0;                         // to the disk itself
  virtual void close() = 0;
};

struct FileStatus {
  enum class Kind { regular, folder, other };
  Kind kind = Kind::regular;
  std::uint64_t size = 0;
  unsigned mode = 0;      // the permission bits
  bool writable = false;  // by this user
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // Of what a symbolic link leads to; none when nothing is there.
  virtual std::optional<FileStatus> status(const std::filesystem::path& path) = 0;
  // At most `count` bytes from `offset` on. Only of regular files: a pipe could block.
  virtual std::string read(const std::filesystem::path& path, std::uint64_t offset,
                           std::size_t count) = 0;
  virtual void makeFolders(const std::filesystem::path& path) = 0;
  // A new file; an error when something of that name is there already.
  virtual std::unique_ptr<WritableFile> create(const std::filesystem::path& path,
                                               unsigned mode) = 0;
  // The end of a regular file, which is made with mode 0600 where it is missing.
  virtual std::unique_ptr<WritableFile> openToAppend(const std::filesystem::path& path) = 0;
  // The beginning of a regular file that is there; what it holds stays until it is written over.
  virtual std::unique_ptr<WritableFile> openToOverwrite(const std::filesystem::path& path) = 0;
  virtual void truncate(const std::filesystem::path& path, std::uint64_t size) = 0;
  virtual void rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  virtual void syncFolder(const std::filesystem::path& path) = 0;  // makes renames in it last
  virtual void remove(const std::filesystem::path& path) = 0;

  static FileSystem& real();
};

// Takes away what others may do with this user's folder, as one of an older version may let them.
// What is not there, or not this user's, stays as it is.
void closeToOthers(const std::filesystem::path& folder);

}  // namespace quorin
