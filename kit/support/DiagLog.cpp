#include "kit/support/DiagLog.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "kit/platform/Fatal.h"
#include "kit/platform/Platform.h"
#include "kit/support/AtomicFile.h"
#include "kit/support/ISO.h"

namespace quorin {
namespace {

std::filesystem::path defaultURL() {
  const std::filesystem::path library = platformFolders().library();
  if (library.empty()) fatal("this user has no library folder for the diagnostic log");
  return library / "Logs/Quorin/quorin.log";
}

// A system takes what is written a page at a time, and a kill can come between two pages. No
// system's pages are smaller than this.
constexpr std::uint64_t pageBytes = 4096;

bool liesInOnePage(std::uint64_t offset, std::uint64_t size) {
  return size == 0 || offset / pageBytes == (offset + size - 1) / pageBytes;
}

}  // namespace

DiagLog::DiagLog(std::filesystem::path url, std::int64_t capBytes, std::int64_t trimTo,
                 FileSystem& files, Clock clock)
    : url_(std::move(url)),
      capBytes_(capBytes),
      trimTo_(trimTo),
      files_(files),
      clock_(std::move(clock)),
      queue_("com.quorin.app.diaglog") {}

DiagLog& DiagLog::shared() {
  static DiagLog& log = *new DiagLog(defaultURL(), 4'000'000, 3'000'000);
  return log;
}

void DiagLog::log(std::string_view category, std::string_view message) {
  std::string cleaned(message);
  std::replace(cleaned.begin(), cleaned.end(), '\r', ' ');
  std::replace(cleaned.begin(), cleaned.end(), '\n', ' ');
  queue_.post([this, line = formatLine(clock_(), category, cleaned) + "\n"] { write(line); });
}

std::string DiagLog::formatLine(Date date, std::string_view category, std::string_view message) {
  std::string line = ISO::stringWithMilliseconds(ISO::fromClock(date));
  line.append(" ").append(category).append(" ").append(message);
  return line;
}

std::string DiagLog::trimmed(std::string data, std::int64_t limit) {
  const auto keep = static_cast<std::size_t>(std::max<std::int64_t>(limit, 0));
  if (data.size() <= keep) return data;
  data.erase(0, data.size() - keep);
  const auto lineFeed = data.find('\n');
  if (lineFeed != std::string::npos) data.erase(0, lineFeed + 1);
  return data;
}

void DiagLog::write(const std::string& line) {
  try {
    files_.makeFolders(url_.parent_path());
  } catch (const FileError&) {
    // Writing will tell.
  }
  try {
    const auto status = files_.status(url_);
    const std::uint64_t size = status ? status->size : 0;
    const bool fits = capBytes_ >= 0 && size + line.size() <= static_cast<std::uint64_t>(capBytes_);
    if (!fits || (status && !status->writable)) {
      rewrite(line, size);
    } else if (liesInOnePage(size, line.size())) {
      append(line, size);
    } else {
      rewriteOrAppend(line, size);
    }
  } catch (const std::exception&) {
    // The line is lost.
  }
}

void DiagLog::append(const std::string& line, std::uint64_t size) {
  const auto file = files_.openToAppend(url_);
  try {
    file->append(line);
    file->close();
  } catch (const FileError&) {
    files_.truncate(url_, size);  // half a line helps nobody
    throw;
  }
}

// Where there is no room or no permission for a second file, half a line is the smaller risk.
void DiagLog::rewriteOrAppend(const std::string& line, std::uint64_t size) {
  try {
    rewrite(line, size);
  } catch (const FileError&) {
    append(line, size);
  }
}

// Writes the whole file anew. Of a file that is to be cut back only the end is read: what stands
// there may have grown without us.
void DiagLog::rewrite(const std::string& line, std::uint64_t size) {
  const auto kept = static_cast<std::uint64_t>(std::max<std::int64_t>(trimTo_, 0));
  const bool trims = capBytes_ < 0 || size + line.size() > static_cast<std::uint64_t>(capBytes_);
  const std::uint64_t offset = trims && size > kept + 1 ? size - kept - 1 : 0;
  std::string data;
  try {
    data = files_.read(url_, offset, static_cast<std::size_t>(size - offset));
  } catch (const FileError&) {
    // Not readable: starts afresh.
  }
  data += line;
  AtomicFile::write(files_, url_, trims ? trimmed(std::move(data), trimTo_) : data);
}

}  // namespace quorin
