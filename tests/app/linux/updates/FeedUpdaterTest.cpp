#include <fstream>
#include <gmock/gmock.h>

#include "app/linux/updates/FeedUpdater.h"
#include "tests/app/linux/updates/Release.h"
#include "tests/fakes/ManualQueue.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/fakes/app/FakeAppPlatform.h"

namespace quorin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* feedUrl = "https://a.org/appcast.xml";
constexpr const char* packageUrl = "https://a.org/quorin_1.3.0_amd64.deb";

// What is asked for waits until the test answers.
class FakeTransport : public UpdateTransport {
 public:
  struct Asked {
    std::string url;
    std::uint64_t limit = 0;
    bool operator==(const Asked&) const = default;
  };

  std::unique_ptr<Transfer> fetch(const std::string& url, std::uint64_t limit,
                                  Handlers handlers) override {
    asked.push_back({url, limit});
    const auto open = std::make_shared<Handlers>(std::move(handlers));
    current = open;
    return std::make_unique<FakeTransfer>(open);
  }

  void progress(std::uint64_t received) { current.lock()->progress(received); }
  void finish(const std::string& body) { std::shared_ptr(current)->finished(body); }
  void fail(UpdateFault fault) { std::shared_ptr(current)->failed({fault, "why"}); }

  std::vector<Asked> asked;
  std::weak_ptr<Handlers> current;  // none when the transfer is gone

 private:
  struct FakeTransfer : Transfer {
    explicit FakeTransfer(std::shared_ptr<Handlers> given) : handlers(std::move(given)) {}
    std::shared_ptr<Handlers> handlers;
  };
};

class FakeProgress : public UpdateProgress {
 public:
  void show(const std::string& text, std::optional<double> done) override {
    shown = text;
    fraction = done;
  }
  void hide() override { shown.clear(); }
  void onCancel(std::function<void()> handler) override { cancelled = std::move(handler); }

  void cancel() {
    hide();
    cancelled();
  }

  std::string shown;  // empty: no window
  std::optional<double> fraction;
  std::function<void()> cancelled;
};

class FeedUpdaterTest : public testing::Test {
 protected:
  FeedUpdaterTest() { release.date = "2026-09-21T14:00:00Z"; }  // 13 minutes ago, by the clock

  void make(const std::string& feed = feedUrl) {
    updater.reset();
    updater = std::make_unique<FeedUpdater>(
        FeedUpdater::Parts{transport, progress, platform.alerts(), platform.workspace(),
                           platform.mainLoop(), worker, platform.clock()},
        FeedUpdater::Release{feed, key, "1.2.0", "amd64"},
        FeedUpdater::Files{folder, home / "feed-date"});
    worker.runAll();
  }

  bool nothingIsLeft() const { return !std::filesystem::exists(folder); }

  std::vector<Alert> takeAlerts() { return std::exchange(platform.alerts().shown, {}); }
  Journal takeJournal() { return std::exchange(platform.journal, {}); }

  void settle() {
    worker.runAll();
    platform.mainLoop().runPosted();
    worker.runAll();
  }

  // Up to the point where the package is asked for.
  void acceptOffer(const std::string& feed) {
    updater->checkForUpdates();
    transport.finish(feed);
    ASSERT_EQ(takeAlerts().size(), 1u);
    platform.alerts().press(0);
  }

  // The one alert says this, and after it everything is as before.
  void expectRefusal(UpdateStep step, const UpdateFailure& failure) {
    EXPECT_THAT(takeAlerts(), ElementsAre(refusal(step, failure)));
    EXPECT_EQ(progress.shown, "");
    EXPECT_TRUE(transport.current.expired());
    EXPECT_TRUE(nothingIsLeft());
    platform.alerts().press(0);
    const std::size_t before = transport.asked.size();
    updater->checkForUpdates();
    EXPECT_EQ(transport.asked.size(), before + 1);
  }

  const TemporaryFolder home;
  Release release;
  std::string key = release.publicKey();
  const std::string package = Release::package("quorin", "1.3.0", "amd64");
  std::filesystem::path folder = home / "updates";
  FakeAppPlatform platform;
  FakeTransport transport;
  FakeProgress progress;
  ManualQueue worker;
  std::unique_ptr<FeedUpdater> updater;
};

TEST_F(FeedUpdaterTest, NeedsAFeedAndAKey) {
  make();
  EXPECT_EQ(updater->unavailable(), std::nullopt);
  make("");
  EXPECT_EQ(updater->unavailable(), "no feed in this build");
  updater->checkForUpdates();
  EXPECT_THAT(transport.asked, IsEmpty());
  make("http://a.org/appcast.xml");
  EXPECT_EQ(updater->unavailable(), "the feed of this build is not secure");
  key = "AAAA";
  make();
  EXPECT_EQ(updater->unavailable(), "the key of this build cannot be used");
  key = "";
  make();
  EXPECT_EQ(updater->unavailable(), "no feed in this build");
}

TEST_F(FeedUpdaterTest, ChecksOnlyWhenAsked) {
  make();
  EXPECT_THAT(transport.asked, IsEmpty());
  EXPECT_EQ(progress.shown, "");
  updater->checkForUpdates();
  EXPECT_THAT(transport.asked, ElementsAre(FakeTransport::Asked{feedUrl, 1 << 20}));
  EXPECT_EQ(progress.shown, "Looking for a newer version of Quorin…");
  EXPECT_EQ(progress.fraction, std::nullopt);
  updater->checkForUpdates();
  EXPECT_EQ(transport.asked.size(), 1u);
}

TEST_F(FeedUpdaterTest, OffersANewerVersionWithItsNotes) {
  make();
  updater->checkForUpdates();
  transport.finish(release.feed("1.3.0", packageUrl, package));
  EXPECT_EQ(progress.shown, "");
  EXPECT_THAT(takeAlerts(), ElementsAre(Alert{"Quorin 1.3.0 is available",
                                              "You have version 1.2.0.\n\nWhat is new",
                                              {"Install", "Not Now"}}));
  platform.alerts().press(1);
  EXPECT_EQ(transport.asked.size(), 1u);
  updater->checkForUpdates();
  EXPECT_EQ(transport.asked.size(), 2u);
}

TEST_F(FeedUpdaterTest, SaysThatThereIsNothingNewer) {
  make();
  updater->checkForUpdates();
  transport.finish(release.feed("1.2", packageUrl, package));
  EXPECT_THAT(takeAlerts(),
              ElementsAre(Alert{"Quorin is up to date", "Version 1.2.0 is the newest one.", {}}));
  platform.alerts().press(0);
  updater->checkForUpdates();
  transport.finish(release.feed("1.1.9", packageUrl, package));
  EXPECT_THAT(takeAlerts(),
              ElementsAre(Alert{"Quorin is up to date",
                                "This is version 1.2.0; the newest one published is 1.1.9.",
                                {}}));
  EXPECT_EQ(transport.asked.size(), 2u);
  EXPECT_TRUE(nothingIsLeft());
}

TEST_F(FeedUpdaterTest, FetchesThePackageAndHandsItToTheInstaller) {
  make();
  acceptOffer(release.feed("1.3.0", packageUrl, package));
  EXPECT_EQ(transport.asked.back(), (FakeTransport::Asked{packageUrl, package.size()}));
  EXPECT_EQ(progress.shown, "Fetching Quorin 1.3.0: 0.0 of 0.0 MB");
  EXPECT_EQ(progress.fraction, 0);
  transport.progress(package.size() / 2);
  EXPECT_NEAR(progress.fraction.value_or(0), 0.5, 0.01);
  EXPECT_TRUE(nothingIsLeft());
  transport.finish(package);
  EXPECT_EQ(progress.shown, "Checking the package of Quorin 1.3.0…");
  takeJournal();
  settle();
  const std::filesystem::path file = folder / "quorin_1.3.0_amd64.deb";
  EXPECT_THAT(takeJournal(), ElementsAre("openFile " + file.string()));
  EXPECT_EQ(progress.shown, "");
  EXPECT_THAT(takeAlerts(), IsEmpty());
  std::ifstream saved(file, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(saved), {}), package);
}

TEST_F(FeedUpdaterTest, KeepsThePackageForTheInstallerUntilTheNextCheckOrStart) {
  for (const bool restarted : {false, true}) {
    make();
    acceptOffer(release.feed("1.3.0", packageUrl, package));
    transport.finish(package);
    settle();
    ASSERT_FALSE(nothingIsLeft());
    if (restarted) {
      make();
    } else {
      updater->checkForUpdates();
    }
    worker.runAll();
    EXPECT_TRUE(nothingIsLeft());
  }
}

TEST_F(FeedUpdaterTest, TellsWhatKeepsItFromTheFeed) {
  make();
  for (const UpdateFault fault :
       {UpdateFault::unreachable, UpdateFault::stalled, UpdateFault::untrusted,
        UpdateFault::refused, UpdateFault::redirected, UpdateFault::truncated,
        UpdateFault::tooLong}) {
    updater->checkForUpdates();
    transport.fail(fault);
    expectRefusal(UpdateStep::checking, {fault, "why"});
    progress.cancel();
  }
}

TEST_F(FeedUpdaterTest, TellsWhatIsWrongWithTheFeed) {
  const std::vector<std::pair<std::string, UpdateFailure>> table{
      {release.signedFeed("<rss><channel>"),
       {UpdateFault::unreadable, "Error parsing start element tag"}},
      {release.signedFeed("<rss><channel/></rss>"), {UpdateFault::undatedFeed, ""}},
      {release.signedFeed("<rss><channel><dc:date>2026-09-21T14:00:00Z</dc:date></channel></rss>"),
       {UpdateFault::nothingForSystem, ""}},
      {release.feed("1.3.0", packageUrl, package) + "\n", {UpdateFault::unsignedFeed, ""}},
      {Release().feed("1.3.0", packageUrl, package), {UpdateFault::changedFeed, ""}},
      {release.feed("1.3.0", packageUrl, package, {{"length", ""}}),
       {UpdateFault::incomplete, "the length of version 1.3.0 is missing"}},
      {release.feed("1.3.0", packageUrl, package, {{"sparkle:edSignature", ""}}),
       {UpdateFault::incomplete, "the signature of version 1.3.0 is missing"}},
      {release.feed("1.3.0", "", package),
       {UpdateFault::incomplete, "the address of version 1.3.0 is missing"}},
      {release.feed("", packageUrl, package), {UpdateFault::incomplete, "a version is missing"}},
      {release.feed("1.3.0", "http://a.org/q.deb", package),
       {UpdateFault::insecure, "http://a.org/q.deb"}},
  };
  make();
  for (const auto& [feed, failure] : table) {
    updater->checkForUpdates();
    transport.finish(feed);
    const std::vector<Alert> told = platform.alerts().shown;
    if (failure.fault == UpdateFault::unreadable) {
      ASSERT_EQ(told.size(), 1u);
      EXPECT_THAT(told[0].informativeText, StartsWith("The list of versions cannot be read. ("));
      takeAlerts();
      platform.alerts().press(0);
      continue;
    }
    expectRefusal(UpdateStep::checking, failure);
    progress.cancel();
  }
}

TEST_F(FeedUpdaterTest, RefusesAFeedOlderThanTheNewestSeen) {
  for (const bool restarted : {false, true}) {
    release.date = restarted ? "2026-09-21T14:10:00Z" : "2026-09-20T14:00:00Z";
    make();
    updater->checkForUpdates();
    transport.finish(release.feed("1.2.0", packageUrl, package));
    EXPECT_EQ(takeAlerts().at(0).message, "Quorin is up to date");
    platform.alerts().press(0);
    if (restarted) {
      settle();
      make();
    }
    release.date = "2026-09-19T14:00:00Z";
    updater->checkForUpdates();
    transport.finish(release.feed("1.3.0", packageUrl, package));
    expectRefusal(
        UpdateStep::checking,
        {UpdateFault::olderFeed, restarted ? "signed on 2026-09-19, the other one on 2026-09-21"
                                           : "signed on 2026-09-19, the other one on 2026-09-20"});
    progress.cancel();
  }
}

// Or a feed that is refused would keep the right one out.
TEST_F(FeedUpdaterTest, RemembersOnlyDatesOfFeedsThatItUses) {
  make();
  release.date = "2026-09-23T14:00:00Z";
  Release others;
  others.date = "2026-09-21T14:12:00Z";
  const std::vector<std::pair<std::string, UpdateFailure>> table{
      {release.feed("1.3.0", packageUrl, package), {UpdateFault::futureFeed, "2026-09-23"}},
      {others.feed("1.3.0", packageUrl, package), {UpdateFault::changedFeed, ""}},
  };
  for (const auto& [feed, failure] : table) {
    updater->checkForUpdates();
    transport.finish(feed);
    expectRefusal(UpdateStep::checking, failure);
    progress.cancel();
  }
  settle();
  EXPECT_FALSE(std::filesystem::exists(home / "feed-date"));
  release.date = "2026-09-21T14:00:00Z";
  acceptOffer(release.feed("1.3.0", packageUrl, package));
}

TEST_F(FeedUpdaterTest, TellsThatTheFeedIsOverThirtyDaysOld) {
  const std::string warning =
      "The list of versions was signed on 2026-08-22, more than 30 days ago. There may be versions "
      "that it does not name.";
  release.date = "2026-08-22T14:13:19Z";  // a second too many
  make();
  updater->checkForUpdates();
  transport.finish(release.feed("1.2", packageUrl, package));
  EXPECT_EQ(takeAlerts().at(0).informativeText, "Version 1.2.0 is the newest one.\n\n" + warning);
  platform.alerts().press(0);
  updater->checkForUpdates();
  transport.finish(release.feed("1.3.0", packageUrl, package));
  EXPECT_EQ(takeAlerts().at(0).informativeText,
            "You have version 1.2.0.\n\n" + warning + "\n\nWhat is new");
  platform.alerts().press(1);
}

TEST_F(FeedUpdaterTest, TellsWhatKeepsItFromThePackage) {
  make();
  for (const UpdateFault fault :
       {UpdateFault::unreachable, UpdateFault::stalled, UpdateFault::untrusted,
        UpdateFault::refused, UpdateFault::redirected, UpdateFault::truncated,
        UpdateFault::tooLong}) {
    acceptOffer(release.feed("1.3.0", packageUrl, package));
    transport.progress(1);
    transport.fail(fault);
    expectRefusal(UpdateStep::installing, {fault, "why"});
    progress.cancel();
  }
}

TEST_F(FeedUpdaterTest, RefusesPackagesThatTheirMakersDidNotSign) {
  make();
  std::string changed = package;
  changed[changed.size() / 2] ^= 1;
  acceptOffer(release.feed("1.3.0", packageUrl, package));
  transport.finish(changed);
  settle();
  expectRefusal(UpdateStep::installing, {UpdateFault::wrongSignature, ""});
  progress.cancel();

  const std::string somebodys = Release().sign(package);
  acceptOffer(release.feed("1.3.0", packageUrl, package, {{"sparkle:edSignature", somebodys}}));
  transport.finish(package);
  settle();
  expectRefusal(UpdateStep::installing, {UpdateFault::wrongSignature, ""});
}

TEST_F(FeedUpdaterTest, SavesNothingThatIsNotSigned) {
  make();
  std::ofstream(folder) << "in the way";  // saving would fail first
  acceptOffer(release.feed("1.3.0", packageUrl, package));
  transport.finish(std::string(package.size(), 'x'));
  worker.runAll();
  platform.mainLoop().runPosted();
  EXPECT_THAT(takeAlerts(),
              ElementsAre(refusal(UpdateStep::installing, {UpdateFault::wrongSignature, ""})));
}

TEST_F(FeedUpdaterTest, RefusesAPackageShorterThanTheFeedSays) {
  make();
  acceptOffer(
      release.feed("1.3.0", packageUrl, package, {{"length", std::to_string(package.size() + 1)}}));
  transport.finish(package);
  settle();
  expectRefusal(UpdateStep::installing, {UpdateFault::truncated, ""});
}

// An old package was signed by the makers, too.
TEST_F(FeedUpdaterTest, RefusesAnotherPackageThanTheOneOffered) {
  const std::vector<std::pair<std::string, std::string>> table{
      {Release::package("quorin", "1.0.0", "amd64"), "quorin 1.0.0 amd64"},
      {Release::package("quorin", "1.3.0", "arm64"), "quorin 1.3.0 arm64"},
      {Release::package("other", "1.3.0", "amd64"), "other 1.3.0 amd64"},
      {"no package at all", "it is no Debian package"},
  };
  make();
  for (const auto& [bytes, told] : table) {
    acceptOffer(release.feed("1.3.0", packageUrl, bytes));
    transport.finish(bytes);
    settle();
    expectRefusal(UpdateStep::installing, {UpdateFault::otherPackage, told});
    progress.cancel();
  }
  EXPECT_THAT(takeJournal(), Not(Contains(StartsWith("openFile"))));
}

TEST_F(FeedUpdaterTest, SaysThatThePackageCannotBeSaved) {
  std::ofstream(home / "file") << "in the way";
  folder = home / "file/updates";
  make();
  acceptOffer(release.feed("1.3.0", packageUrl, package));
  transport.finish(package);
  settle();
  const std::vector<Alert> told = takeAlerts();
  ASSERT_EQ(told.size(), 1u);
  EXPECT_THAT(told[0].informativeText, StartsWith("The package cannot be saved. ("));
  EXPECT_THAT(told[0].informativeText, HasSubstr("file/updates"));
}

TEST_F(FeedUpdaterTest, SaysThatNothingInstallsPackages) {
  make();
  platform.workspace().opens = false;
  acceptOffer(release.feed("1.3.0", packageUrl, package));
  transport.finish(package);
  settle();
  expectRefusal(UpdateStep::installing, {UpdateFault::noInstaller, ""});
}

TEST_F(FeedUpdaterTest, CanBeCancelledAtEveryStep) {
  const std::string feed = release.feed("1.3.0", packageUrl, package);
  const auto isCancelled = [this] {
    EXPECT_TRUE(transport.current.expired());
    settle();
    EXPECT_EQ(progress.shown, "");
    EXPECT_THAT(takeAlerts(), IsEmpty());
    EXPECT_THAT(takeJournal(), IsEmpty());
    EXPECT_TRUE(nothingIsLeft());
  };
  make();
  takeJournal();

  updater->checkForUpdates();
  progress.cancel();
  isCancelled();

  acceptOffer(feed);
  takeJournal();
  transport.progress(1);
  progress.cancel();
  isCancelled();

  acceptOffer(feed);
  takeJournal();
  transport.finish(package);
  progress.cancel();
  isCancelled();

  acceptOffer(feed);
  takeJournal();
  transport.finish(package);
  worker.runAll();  // saved, and on its way to the main thread
  EXPECT_FALSE(nothingIsLeft());
  progress.cancel();
  isCancelled();
}

TEST_F(FeedUpdaterTest, MayEndAtAnyTime) {
  const std::string feed = release.feed("1.3.0", packageUrl, package);
  make();
  updater->checkForUpdates();
  updater.reset();
  EXPECT_TRUE(transport.current.expired());
  EXPECT_EQ(progress.shown, "");

  make();
  updater->checkForUpdates();
  transport.finish(feed);
  updater.reset();
  platform.alerts().press(0);
  EXPECT_EQ(transport.asked.size(), 2u);

  make();
  takeAlerts();
  acceptOffer(feed);
  transport.finish(package);
  updater.reset();
  takeJournal();
  settle();
  EXPECT_THAT(takeJournal(), IsEmpty());
  progress.cancelled();
}

}  // namespace
}  // namespace quorin
