// FeedUpdater: the updater port over a signed feed. Reads the feed when asked to, uses it only when
// all of it is signed and no newer one was seen, offers what is newer with its notes, fetches the
// package into memory, and only when it is exactly what the maker signed puts it into a folder of
// its own and hands it to the desktop's installer. Whatever goes wrong ends in one alert; the user
// may cancel at any time. Main thread; owned by the platform.
//
// The folder lasts until the next check or the next start, since the installer may take its time.
// Only the worker touches it.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <variant>

#include "app/linux/updates/PackageFile.h"
#include "app/linux/updates/UpdateFeed.h"
#include "app/linux/updates/UpdateProgress.h"
#include "app/linux/updates/UpdateTransport.h"
#include "app/shell/ports/Clock.h"
#include "app/shell/ports/MainLoop.h"
#include "app/shell/ports/Updater.h"
#include "app/shell/ports/Workspace.h"
#include "kit/support/Queue.h"

namespace quorin {

class FeedUpdater : public Updater {
 public:
  // Everything here must outlive the object. The worker's work posts to the main loop.
  struct Parts {
    UpdateTransport& transport;
    UpdateProgress& progress;
    Alerts& alerts;
    Workspace& workspace;
    MainLoop& loop;
    Queue& worker;
    const Clock& clock;
  };

  // What the build knows.
  struct Release {
    std::string feed;          // its address; empty: no updates
    std::string publicKey;     // in base64; empty: no updates
    std::string version;       // of this program
    std::string architecture;  // as Debian names it: "amd64"
  };

  struct Files {
    std::filesystem::path folder;    // for the package
    std::filesystem::path feedDate;  // the newest that was seen; outside of that folder
  };

  // Removes what an earlier process left in the folder.
  FeedUpdater(Parts parts, Release release, Files files);
  ~FeedUpdater() override;
  FeedUpdater(const FeedUpdater&) = delete;
  FeedUpdater& operator=(const FeedUpdater&) = delete;

  std::optional<std::string> unavailable() const override { return reason_; }

  // Does nothing while an earlier check still goes on.
  void checkForUpdates() override;

 private:
  using Prepared = std::variant<std::filesystem::path, UpdateFailure>;

  std::optional<std::string> findReason();
  void readFeed(const std::string& feed);
  bool isRecent(ISO::Date date);
  void offer(const Update& update, const std::string& warning);
  void fetchPackage(const Update& update);
  void showReceived(const Update& update, std::uint64_t received);
  void prepare(const Update& update, std::string bytes);
  static Prepared verifyAndSave(const Update& update, const std::string& bytes,
                                const std::string& key, const PackageIdentity& expected,
                                const std::filesystem::path& folder);
  void install(const Prepared& prepared);
  void cancel();
  void discardPackage();
  void fail(UpdateStep step, const UpdateFailure& failure);
  void tell(const Alert& alert);
  void end();

  const Parts parts_;
  const Release release_;
  const Files files_;
  std::optional<ISO::Date> newestSeen_;  // by this process
  std::string key_;                      // its 32 bytes
  std::optional<VersionNumber> version_;
  std::optional<std::string> reason_;
  std::unique_ptr<UpdateTransport::Transfer> transfer_;
  std::shared_ptr<const bool> running_;  // none between checks; a new one for each
};

}  // namespace quorin
