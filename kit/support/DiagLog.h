// DiagLog: the diagnostic log, a text file with one line an event, capped in size. Any thread may
// log; the file is written on the log's own queue. Logging never fails and never waits for the
// disk: a line that cannot be written is lost, and a kill leaves a line whole or not at all.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "kit/support/FileSystem.h"
#include "kit/support/SerialQueue.h"

namespace quorin {

class DiagLog {
 public:
  using Date = std::chrono::system_clock::time_point;
  using Clock = std::function<Date()>;

  // Beyond `capBytes` the file is cut back to `trimTo`. Does not touch the disk. Destruction
  // writes what was logged before.
  DiagLog(std::filesystem::path url, std::int64_t capBytes, std::int64_t trimTo,
          FileSystem& files = FileSystem::real(), Clock clock = std::chrono::system_clock::now);

  // The one log of the process, Logs/Quorin/quorin.log in the library folder of the installed
  // platform; made at its first use, never destroyed. No such folder stops the process.
  static DiagLog& shared();

  const std::filesystem::path& url() const { return url_; }

  // Writes "<now> <category> <message>" as one line; line breaks in the message become spaces.
  void log(std::string_view category, std::string_view message);

  // Returns when everything logged before has been written. Never from the log's own queue.
  void flush() { queue_.flush(); }

  // "2026-11-15T11:00:44.123Z REVEAL visible sheet=Sheet1 addr=B3", in UTC, without line feed.
  static std::string formatLine(Date date, std::string_view category, std::string_view message);

  // The last `limit` bytes of longer data, from the first whole line in them on; all of them when
  // they hold no line feed.
  static std::string trimmed(std::string data, std::int64_t limit);

 private:
  void write(const std::string& line);  // on the queue
  void append(const std::string& line, std::uint64_t size);
  void rewriteOrAppend(const std::string& line, std::uint64_t size);
  void rewrite(const std::string& line, std::uint64_t size);

  const std::filesystem::path url_;
  const std::int64_t capBytes_;
  const std::int64_t trimTo_;
  FileSystem& files_;
  const Clock clock_;
  SerialQueue queue_;  // last: its work uses everything above
};

}  // namespace quorin
