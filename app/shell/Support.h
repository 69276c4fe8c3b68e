// Support: saves a problem report on the user's demand, and offers to after a crash. Main thread
// only; owned by the application delegate. It waits for the packing, of at most a few megabytes.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/shell/ports/AppPlatform.h"
#include "kit/platform/Folders.h"
#include "kit/support/DiagLog.h"
#include "kit/support/ProblemReport.h"

namespace quorin {

class Support {
 public:
  // Everything here must outlive the object.
  struct Parts {
    AppPlatform& platform;
    Folders& folders;
    DiagLog& log;
  };

  static constexpr const char* crashPrefix = "Quorin-";

  explicit Support(Parts parts);

  // Where the system keeps crash reports.
  std::filesystem::path diagnosticsDir() const;

  // What to keep as the time of a launch at `now`, in the whole seconds that dates are kept in:
  // this second, or the next one where a crash report is of this second already. That one is asked
  // about now, and must not be later than this launch when the next one asks.
  ISO::Date launchDate(ISO::Date now) const;

  // Saves the zip on the desktop and opens a mail that asks for it. A failure is logged, and then
  // no mail is opened.
  void report();

  // Asks whether to save a report when a crash report is newer than `since`, then goes on with
  // `next`: at once when there is none, else after the answer.
  void promptIfCrashed(const std::optional<ISO::Date>& since, std::function<void()> next);

 private:
  std::filesystem::path saveZip(const std::string& version);
  void openMail(const std::string& version, const std::string& zipName);

  Parts parts_;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
