// ProblemReport: the parts of a report that a user can send: the newest crash report, a folder with
// it, the diagnostic log and a description of the system, the zip of that folder and the link that
// opens a mail. Nothing is sent by itself and no cell contents are in it. Any thread.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "kit/platform/Archiver.h"
#include "kit/support/ISO.h"

namespace quorin {

class ProblemReportError : public std::runtime_error {
 public:
  static constexpr const char* domain = "ProblemReport";

  ProblemReportError(int code, const std::string& description)
      : std::runtime_error(description), code_(code) {}
  int code() const { return code_; }

 private:
  int code_;
};

// What the report tells of the machine.
struct SystemVersions {
  std::string system;                             // "macOS", "Linux"
  std::string systemVersion;                      // "Version 14.2 (Build 23C64)"
  std::string spreadsheet;                        // "Excel", "LibreOffice"
  std::optional<std::string> spreadsheetVersion;  // none when it was not found
  bool operator==(const SystemVersions&) const = default;
};

namespace ProblemReport {

using Path = std::filesystem::path;

// The crash report in the folder whose name begins with the prefix, ends with ".ips" and that was
// changed last; none when there is none or the folder cannot be read.
std::optional<Path> newestCrash(const Path& folder, const std::string& prefix);

// When a file was changed last; none when it is not there.
std::optional<ISO::Date> mtime(const Path& url);

// The newest crash report if it is newer than `since`, or if there is no such date.
std::optional<Path> crash(const std::optional<ISO::Date>& since, const Path& folder,
                          const std::string& prefix);

// "2026-03-03-0905", in local time.
std::string stamp(ISO::Date now);

// Makes the folder "Quorin-report-<stamp>" anew with what there is of the log and the crash report,
// and "system.txt". Throws std::system_error where a file cannot be copied or written.
Path stage(const Path& logURL, const std::optional<Path>& crashURL, const std::string& systemInfo,
           const Path& into, ISO::Date now);

// Packs the folder into a new file in place of the one there. Throws ProblemReportError with the
// archiver's status, std::system_error when the old file cannot be removed.
void zip(const Path& folder, const Path& zipURL, Archiver& archiver);

// Three lines: program, system, spreadsheet, each with its version.
std::string systemInfo(const std::string& appVersion, const SystemVersions& versions);

// A link that opens a mail; none without an address.
std::optional<std::string> mailto(const std::string& address, const std::string& subject,
                                  const std::string& body);

}  // namespace ProblemReport
}  // namespace quorin
