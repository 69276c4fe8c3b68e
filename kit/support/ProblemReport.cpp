#include "kit/support/ProblemReport.h"

#include <cerrno>
#include <ctime>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

namespace quorin::ProblemReport {

namespace {

namespace fs = std::filesystem;

constexpr const char* crashSuffix = ".ips";
constexpr const char* notFound = "not found";

std::string percentEncoded(const std::string& text) {
  constexpr const char* digits = "0123456789ABCDEF";
  constexpr std::string_view unreserved =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  std::string encoded;
  for (const char letter : text) {
    if (unreserved.find(letter) != std::string_view::npos) {
      encoded += letter;
    } else {
      const auto byte = static_cast<unsigned char>(letter);
      encoded += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return encoded;
}

// What is made meanwhile is this user's alone, by programs that are started too.
class PrivateFiles {
 public:
  PrivateFiles() : before_(::umask(S_IRWXG | S_IRWXO)) {}
  ~PrivateFiles() { ::umask(before_); }
  PrivateFiles(const PrivateFiles&) = delete;
  PrivateFiles& operator=(const PrivateFiles&) = delete;

 private:
  const mode_t before_;
};

void writeText(const Path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  out.close();
  if (!out)
    throw fs::filesystem_error("cannot write", path, std::make_error_code(std::errc::io_error));
}

}  // namespace

std::optional<Path> newestCrash(const Path& folder, const std::string& prefix) {
  std::optional<Path> newest;
  std::optional<ISO::Date> newestDate;
  std::error_code failed;
  for (auto entry = fs::directory_iterator(folder, failed);
       !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    const std::string name = entry->path().filename().string();
    if (!name.starts_with(prefix) || !name.ends_with(crashSuffix)) continue;
    const std::optional<ISO::Date> date = mtime(entry->path());
    if (!date || (newestDate && *date <= *newestDate)) continue;
    newest = entry->path();
    newestDate = date;
  }
  return newest;
}

std::optional<ISO::Date> mtime(const Path& url) {
  std::error_code failed;
  const fs::file_time_type written = fs::last_write_time(url, failed);
  if (failed) return std::nullopt;
  return std::chrono::time_point_cast<ISO::Date::duration>(
      std::chrono::file_clock::to_sys(written));
}

std::optional<Path> crash(const std::optional<ISO::Date>& since, const Path& folder,
                          const std::string& prefix) {
  std::optional<Path> newest = newestCrash(folder, prefix);
  if (!newest || !since) return newest;
  const std::optional<ISO::Date> date = mtime(*newest);
  if (!date || *date <= *since) return std::nullopt;
  return newest;
}

std::string stamp(ISO::Date now) {
  const auto sinceEpoch = std::chrono::floor<std::chrono::seconds>(now.time_since_epoch());
  const std::time_t seconds = static_cast<std::time_t>(sinceEpoch.count());
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d-%H%M", &local)};
}

Path stage(const Path& logURL, const std::optional<Path>& crashURL, const std::string& systemInfo,
           const Path& into, ISO::Date now) {
  const PrivateFiles ofUserAlone;
  const Path folder = into / ("Quorin-report-" + stamp(now));
  fs::remove_all(folder);
  fs::create_directories(folder);
  if (fs::exists(logURL)) fs::copy_file(logURL, folder / logURL.filename());
  if (crashURL) fs::copy_file(*crashURL, folder / crashURL->filename());
  writeText(folder / "system.txt", systemInfo);
  return folder;
}

void zip(const Path& folder, const Path& zipURL, Archiver& archiver) {
  if (fs::is_directory(fs::symlink_status(zipURL))) {
    throw ProblemReportError(EISDIR,
                             "there is a folder in the place of " + zipURL.filename().string());
  }
  const PrivateFiles ofUserAlone;
  fs::remove(zipURL);
  const int status = archiver.zip(folder, zipURL);
  if (status != 0) throw ProblemReportError(status, "ditto failed");
}

std::string systemInfo(const std::string& appVersion, const SystemVersions& versions) {
  return "Quorin " + appVersion + "\n" + versions.system + " " + versions.systemVersion + "\n" +
         versions.spreadsheet + " " + versions.spreadsheetVersion.value_or(notFound) + "\n";
}

std::optional<std::string> mailto(const std::string& address, const std::string& subject,
                                  const std::string& body) {
  if (address.empty()) return std::nullopt;
  return "mailto:" + address + "?subject=" + percentEncoded(subject) +
         "&body=" + percentEncoded(body);
}

}  // namespace quorin::ProblemReport
