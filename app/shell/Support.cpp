#include "app/shell/Support.h"

#include <chrono>
#include <stdexcept>
#include <stdlib.h>
#include <system_error>
#include <utility>

namespace quorin {

namespace {

constexpr std::size_t reportButton = 0;

// A new folder of this user alone, gone at the end whatever happens.
class StagingFolder {
 public:
  explicit StagingFolder(const std::filesystem::path& parent) {
    std::string pattern = (parent / "Quorin-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
      throw std::system_error(errno, std::generic_category(), "cannot make " + pattern);
    }
    path_ = pattern;
  }
  ~StagingFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  StagingFolder(const StagingFolder&) = delete;
  StagingFolder& operator=(const StagingFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace

Support::Support(Parts parts) : parts_(parts) {}

std::filesystem::path Support::diagnosticsDir() const {
  return parts_.folders.library() / "Logs" / "DiagnosticReports";
}

ISO::Date Support::launchDate(ISO::Date now) const {
  const auto second = std::chrono::floor<std::chrono::seconds>(now);
  const bool crashedNow = ProblemReport::crash(second, diagnosticsDir(), crashPrefix).has_value();
  return crashedNow ? second + std::chrono::seconds(1) : second;
}

void Support::report() {
  const std::string version = parts_.platform.bundle().infoString("CFBundleShortVersionString");
  try {
    const std::filesystem::path zip = saveZip(version);
    openMail(version, zip.filename().string());
  } catch (const std::exception& error) {
    parts_.log.log("ERROR", std::string("problem report: ") + error.what());
  }
}

std::filesystem::path Support::saveZip(const std::string& version) {
  Archiver* const archiver = parts_.platform.archiver();
  if (!archiver) throw std::runtime_error("nothing here can pack files");
  const ISO::Date now = ISO::fromClock(parts_.platform.clock().now());
  const StagingFolder staging(parts_.folders.temporary());
  parts_.log.flush();
  const std::filesystem::path folder = ProblemReport::stage(
      parts_.log.url(), ProblemReport::crash(std::nullopt, diagnosticsDir(), crashPrefix),
      ProblemReport::systemInfo(version, parts_.platform.systemVersions()), staging.path(), now);
  const std::filesystem::path zip =
      parts_.folders.desktop() / (crashPrefix + ProblemReport::stamp(now) + ".zip");
  ProblemReport::zip(folder, zip, *archiver);
  return zip;
}

void Support::openMail(const std::string& version, const std::string& zipName) {
  const std::optional<std::string> link = ProblemReport::mailto(
      parts_.platform.bundle().infoString("QXSupportEmail"), "Quorin problem (v" + version + ")",
      "Please attach " + zipName +
          " from your Desktop and describe what happened:\n\n"
          "What I did:\nWhat I expected:\nWhat happened instead:");
  if (!link) return;  // no address was built in; the zip is on the desktop
  if (!parts_.platform.workspace().openURL(*link)) {
    parts_.log.log("ERROR", "problem report: no program opens a mail");
  }
}

void Support::promptIfCrashed(const std::optional<ISO::Date>& since, std::function<void()> next) {
  if (!ProblemReport::crash(since, diagnosticsDir(), crashPrefix)) {
    next();
    return;
  }
  parts_.log.log("SUPPORT", "crash report found since last launch");
  parts_.platform.application().activate();
  const Alert alert{"Quorin crashed last time",
                    "Send a report? A zip with the crash log and the diagnostic log (no cell "
                    "contents) is saved to your Desktop; you attach it to an email.",
                    {"Report…", "Not Now"}};
  parts_.platform.alerts().show(
      alert, [this, alive = std::weak_ptr(alive_), next = std::move(next)](std::size_t button) {
        if (alive.expired()) return;
        if (button == reportButton) report();
        next();
      });
}

}  // namespace quorin
