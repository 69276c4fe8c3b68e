#include "kit/support/AtomicFile.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <signal.h>
#include <unistd.h>

namespace quorin::AtomicFile {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view suffix = ".tmp";

// The end of a chain of symbolic links, whether something is there or not.
fs::path followLinks(fs::path path) {
  std::error_code error;
  for (int links = 0; links < 40; ++links) {
    const fs::path target = fs::read_symlink(path, error);
    if (error) return path;
    path = path.parent_path() / target;
  }
  throw FileError(ELOOP, "write", path);
}

// ".config.json.": what the names of all temporary files of a file begin with.
std::string temporaryPrefix(const fs::path& path) {
  return "." + path.filename().string() + ".";
}

fs::path temporaryName(const fs::path& path) {
  static std::atomic<unsigned> count = 0;
  return path.parent_path() / (temporaryPrefix(path) + std::to_string(::getpid()) + "-" +
                               std::to_string(++count) + std::string(suffix));
}

bool isAbandoned(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix) || !name.ends_with(suffix)) return false;
  name.remove_prefix(prefix.size());
  pid_t process = 0;
  const auto end = std::from_chars(name.data(), name.data() + name.size(), process);
  if (end.ec != std::errc() || end.ptr == name.data() + name.size() || *end.ptr != '-') {
    return false;
  }
  return process > 0 && ::kill(process, 0) != 0 && errno == ESRCH;
}

void removeAbandoned(FileSystem& files, const fs::path& path) {
  const std::string prefix = temporaryPrefix(path);
  std::error_code error;
  for (fs::directory_iterator entry(path.parent_path(), error), end; !error && entry != end;
       entry.increment(error)) {
    if (!isAbandoned(entry->path().filename().string(), prefix)) continue;
    try {
      files.remove(entry->path());
    } catch (const FileError&) {
      // It is in nobody's way.
    }
  }
}

unsigned modeForReplacing(FileSystem& files, const fs::path& path, ReadOnly readOnly) {
  const auto old = files.status(path);
  if (!old) return 0600;
  if (old->kind == FileStatus::Kind::folder) throw FileError(EISDIR, "write", path);
  if (old->kind == FileStatus::Kind::other) throw FileError(EINVAL, "write", path);
  if (readOnly == ReadOnly::refuse && !old->writable) throw FileError(EACCES, "write", path);
  return old->mode | 0400;  // what is written must be read again
}

}  // namespace

void write(FileSystem& files, const fs::path& link, std::string_view data, ReadOnly readOnly,
           Sync sync) {
  const fs::path path = followLinks(fs::absolute(link));
  const unsigned mode = modeForReplacing(files, path, readOnly);
  removeAbandoned(files, path);
  const fs::path temporary = temporaryName(path);
  const auto file = files.create(temporary, mode);
  try {
    file->append(data);
    if (sync == Sync::full) file->sync();
    file->close();
    files.rename(temporary, path);
  } catch (...) {
    try {
      files.remove(temporary);
    } catch (const FileError&) {
      // The error that led here is the one to report.
    }
    throw;
  }
  if (sync == Sync::full) files.syncFolder(path.parent_path());
}

}  // namespace quorin::AtomicFile
