#include "app/linux/updates/FeedUpdater.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "app/linux/updates/Address.h"
#include "app/linux/updates/FeedDate.h"
#include "app/linux/updates/FeedSignature.h"
#include "app/linux/updates/PackageSignature.h"

namespace quorin {

namespace {

constexpr std::uint64_t longestFeed = 1 << 20;
constexpr std::size_t installButton = 0;

std::string megabytes(std::uint64_t bytes) {
  constexpr double megabyte = 1'000'000;
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", static_cast<double>(bytes) / megabyte);
  return text;
}

}  // namespace

FeedUpdater::FeedUpdater(Parts parts, Release release, Files files)
    : parts_(parts),
      release_(std::move(release)),
      files_(std::move(files)),
      version_(VersionNumber::parse(release_.version)),
      reason_(findReason()) {
  discardPackage();
  parts_.progress.onCancel([this] { cancel(); });
}

FeedUpdater::~FeedUpdater() {
  parts_.progress.onCancel([] {});
  parts_.progress.hide();
}

std::optional<std::string> FeedUpdater::findReason() {
  if (release_.feed.empty() || release_.publicKey.empty()) return "no feed in this build";
  if (!isSecure(release_.feed)) return "the feed of this build is not secure";
  const std::optional<std::string> key = publicKeyFromText(release_.publicKey);
  if (!key || !version_) return "the key of this build cannot be used";
  key_ = *key;
  return std::nullopt;
}

void FeedUpdater::checkForUpdates() {
  if (reason_ || running_) return;
  running_ = std::make_shared<const bool>(true);
  discardPackage();
  parts_.progress.show("Looking for a newer version of Quorin…", std::nullopt);
  transfer_ = parts_.transport.fetch(
      release_.feed, longestFeed,
      {[](std::uint64_t) {}, [this](const std::string& feed) { readFeed(feed); },
       [this](const UpdateFailure& failure) { fail(UpdateStep::checking, failure); }});
}

void FeedUpdater::readFeed(const std::string& feed) {
  const auto content = signedFeed(feed, key_);
  if (const auto* const failure = std::get_if<UpdateFailure>(&content)) {
    return fail(UpdateStep::checking, *failure);
  }
  const auto read =
      quorin::readFeed(std::get<std::string_view>(content), "linux-" + release_.architecture);
  if (const auto* const failure = std::get_if<UpdateFailure>(&read)) {
    return fail(UpdateStep::checking, *failure);
  }
  const auto& [date, newest] = std::get<Feed>(read);
  if (!isRecent(date)) return;
  if (const auto* const failure = std::get_if<UpdateFailure>(&newest)) {
    return fail(UpdateStep::checking, *failure);
  }
  const Update& update = std::get<Update>(newest);
  const std::string warning = FeedDate::warning(date, ISO::fromClock(parts_.clock.now()));
  if (update.number > *version_) return offer(update, warning);
  std::string text = update.number == *version_
                         ? "Version " + release_.version + " is the newest one."
                         : "This is version " + release_.version +
                               "; the newest one published is " + update.version + ".";
  if (!warning.empty()) text += "\n\n" + warning;
  tell({"Quorin is up to date", text, {}});
}

// Remembers the date when it is the newest so far; tells the user when the feed is not to be used.
bool FeedUpdater::isRecent(ISO::Date date) {
  newestSeen_ = std::max(newestSeen_, FeedDate::load(files_.feedDate));
  if (const auto failure =
          FeedDate::refused(date, newestSeen_, ISO::fromClock(parts_.clock.now()))) {
    fail(UpdateStep::checking, *failure);
    return false;
  }
  if (newestSeen_ < date) {
    newestSeen_ = date;
    parts_.worker.post([file = files_.feedDate, date] { FeedDate::remember(file, date); });
  }
  return true;
}

void FeedUpdater::offer(const Update& update, const std::string& warning) {
  transfer_.reset();
  parts_.progress.hide();
  std::string text = "You have version " + release_.version + ".";
  for (const std::string& more : {warning, update.notes}) {
    if (!more.empty()) text += "\n\n" + more;
  }
  parts_.alerts.show({"Quorin " + update.version + " is available", text, {"Install", "Not Now"}},
                     [this, update, running = std::weak_ptr(running_)](std::size_t button) {
                       if (running.expired()) return;
                       if (button == installButton) return fetchPackage(update);
                       end();
                     });
}

void FeedUpdater::fetchPackage(const Update& update) {
  showReceived(update, 0);
  transfer_ = parts_.transport.fetch(
      update.url, update.length,
      {[this, update](std::uint64_t received) { showReceived(update, received); },
       [this, update](std::string bytes) { prepare(update, std::move(bytes)); },
       [this](const UpdateFailure& failure) { fail(UpdateStep::installing, failure); }});
}

void FeedUpdater::showReceived(const Update& update, std::uint64_t received) {
  parts_.progress.show("Fetching Quorin " + update.version + ": " + megabytes(received) + " of " +
                           megabytes(update.length) + " MB",
                       static_cast<double>(received) / static_cast<double>(update.length));
}

void FeedUpdater::prepare(const Update& update, std::string bytes) {
  transfer_.reset();
  if (bytes.size() < update.length) {
    return fail(UpdateStep::installing, {UpdateFault::truncated, {}});
  }
  parts_.progress.show("Checking the package of Quorin " + update.version + "…", 1);
  const PackageIdentity expected{"quorin", update.version, release_.architecture};
  parts_.worker.post([this, update, expected, key = key_, folder = files_.folder,
                      &loop = parts_.loop, bytes = std::move(bytes),
                      running = std::weak_ptr(running_)] {
    loop.post([this, running, prepared = verifyAndSave(update, bytes, key, expected, folder)] {
      if (!running.expired()) install(prepared);
    });
  });
}

FeedUpdater::Prepared FeedUpdater::verifyAndSave(const Update& update, const std::string& bytes,
                                                 const std::string& key,
                                                 const PackageIdentity& expected,
                                                 const std::filesystem::path& folder) {
  if (!isSigned(bytes, update.signature, key))
    return UpdateFailure{UpdateFault::wrongSignature, {}};
  try {
    std::filesystem::path file = PackageFile::save(folder, expected.fileName(), bytes);
    // An old package that was signed in its time must not come back as a new one.
    const std::optional<PackageIdentity> found = PackageFile::identity(file);
    if (found == expected) return file;
    PackageFile::discard(folder);
    return UpdateFailure{UpdateFault::otherPackage,
                         found ? found->name + " " + found->version + " " + found->architecture
                               : "it is no Debian package"};
  } catch (const std::exception& error) {
    PackageFile::discard(folder);
    return UpdateFailure{UpdateFault::notSaved, error.what()};
  }
}

void FeedUpdater::install(const Prepared& prepared) {
  if (const auto* const failure = std::get_if<UpdateFailure>(&prepared)) {
    return fail(UpdateStep::installing, *failure);
  }
  if (!parts_.workspace.openFile(std::get<std::filesystem::path>(prepared))) {
    discardPackage();
    return fail(UpdateStep::installing, {UpdateFault::noInstaller, {}});
  }
  parts_.progress.hide();
  end();
}

void FeedUpdater::cancel() {
  parts_.progress.hide();
  discardPackage();
  end();
}

// On the worker, after what it may just be saving.
void FeedUpdater::discardPackage() {
  parts_.worker.post([folder = files_.folder] { PackageFile::discard(folder); });
}

void FeedUpdater::fail(UpdateStep step, const UpdateFailure& failure) {
  tell(refusal(step, failure));
}

void FeedUpdater::tell(const Alert& alert) {
  transfer_.reset();
  parts_.progress.hide();
  parts_.alerts.show(alert, [this, running = std::weak_ptr(running_)](std::size_t) {
    if (!running.expired()) end();
  });
}

void FeedUpdater::end() {
  transfer_.reset();
  running_.reset();
}

}  // namespace quorin
