// The whole way of an update: a server, a feed as the release tool writes it, and the package.
#include <fstream>
#include <gmock/gmock.h>

#include "app/linux/updates/FeedSignature.h"
#include "app/linux/updates/FeedUpdater.h"
#include "app/linux/updates/PackageSignature.h"
#include "app/linux/updates/SoupTransport.h"
#include "kit/platform/Thread.h"
#include "kit/support/SerialQueue.h"
#include "tests/app/linux/EventLoop.h"
#include "tests/app/linux/updates/Release.h"
#include "tests/app/linux/updates/ReleaseServer.h"
#include "tests/fakes/app/FakeAppPlatform.h"
#include "tests/fakes/ui/ChildProcess.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NoProgress : public UpdateProgress {
 public:
  void show(const std::string&, std::optional<double>) override {}
  void hide() override {}
  void onCancel(std::function<void()>) override {}
};

std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class UpdateRoadTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { MainThread::record(); }

  UpdateRoadTest() {
    ui::ChildProcess::run({"python3", QUORIN_SIGN_UPDATE, "new-key", home / "key"});
    key = ui::ChildProcess::run({"python3", QUORIN_SIGN_UPDATE, "public-key", home / "key"});
    key.pop_back();  // the line's end
    package = home / "quorin_1.3.0_amd64.deb";
    std::ofstream(package, std::ios::binary) << Release::package("quorin", "1.3.0", "amd64");
    std::ofstream(home / "notes") << "Faster.\nSmaller & better.\n";
    ui::ChildProcess::run({"python3", QUORIN_SIGN_UPDATE, "add", home / "key", home / "feed",
                           server.url("/files/"), package, home / "notes"});
    server.serveFile("/feed", contents(home / "feed"));
    server.serveFile("/files/quorin_1.3.0_amd64.deb", contents(package));
  }

  void run(const std::function<bool()>& until) {
    ASSERT_TRUE(runUntil([&] {
      platform.mainLoop().runPosted();
      return until();
    }));
  }

  const TemporaryFolder home;
  std::string key;
  std::filesystem::path package;
  ReleaseServer server;
  FakeAppPlatform platform;
  SystemClock clock;  // as the release tool has it
  SoupTransport transport{{server.authorities(), std::chrono::seconds(10)}};
  NoProgress progress;
  SerialQueue worker{"updates"};
};

TEST_F(UpdateRoadTest, LeadsFromTheReleaseToTheInstaller) {
  FeedUpdater updater({transport, progress, platform.alerts(), platform.workspace(),
                       platform.mainLoop(), worker, clock},
                      {server.url("/feed"), key, "1.2.0", "amd64"},
                      {home / "updates", home / "feed-date"});
  updater.checkForUpdates();
  run([&] { return !platform.alerts().shown.empty(); });
  EXPECT_EQ(platform.alerts().shown.front(),
            (Alert{"Quorin 1.3.0 is available",
                   "You have version 1.2.0.\n\nFaster.\nSmaller & better.",
                   {"Install", "Not Now"}}));
  platform.journal.clear();
  platform.alerts().press(0);
  run([&] { return !platform.journal.empty(); });
  const std::filesystem::path saved = home / "updates/quorin_1.3.0_amd64.deb";
  EXPECT_THAT(platform.journal, ElementsAre("openFile " + saved.string()));
  EXPECT_EQ(contents(saved), contents(package));
}

TEST_F(UpdateRoadTest, EndsBeforeThePackageThatSomebodyElsePutThere) {
  std::string changed = contents(package);
  changed.back() ^= 1;
  server.serveFile("/files/quorin_1.3.0_amd64.deb", changed);
  FeedUpdater updater({transport, progress, platform.alerts(), platform.workspace(),
                       platform.mainLoop(), worker, clock},
                      {server.url("/feed"), key, "1.2.0", "amd64"},
                      {home / "updates", home / "feed-date"});
  updater.checkForUpdates();
  run([&] { return platform.alerts().shown.size() == 1; });
  platform.alerts().press(0);
  run([&] { return platform.alerts().shown.size() == 2; });
  EXPECT_EQ(platform.alerts().shown.back(),
            refusal(UpdateStep::installing, {UpdateFault::wrongSignature, ""}));
  EXPECT_FALSE(std::filesystem::exists(home / "updates"));
}

TEST_F(UpdateRoadTest, KeepsOtherVersionsInTheFeedAndReplacesItsOwn) {
  const std::string old = home / "old.deb";
  std::ofstream(old, std::ios::binary) << Release::package("quorin", "1.2.0", "amd64");
  for (int i = 0; i < 2; ++i) {
    ui::ChildProcess::run(
        {"python3", QUORIN_SIGN_UPDATE, "add", home / "key", home / "feed", "https://a.org", old});
  }
  const std::string feed = contents(home / "feed");
  std::size_t items = 0;
  for (std::size_t at = feed.find("<item>"); at != std::string::npos;
       at = feed.find("<item>", at + 1)) {
    ++items;
  }
  EXPECT_EQ(items, 2u);
  const auto read = readFeed(feed, "linux-amd64");
  EXPECT_EQ(std::get<Update>(std::get<Feed>(read).newest).version, "1.3.0");
}

// Or it would put its signature under what somebody else wrote into the feed.
TEST_F(UpdateRoadTest, AddsOnlyToAFeedThatItSigned) {
  const std::string feed = contents(home / "feed");
  const auto sign = [&](const std::string& command, std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"python3", QUORIN_SIGN_UPDATE, command, home / "key", home / "feed"});
    ui::ChildProcess::run(words);
  };
  for (const std::string& changed :
       {"<!-- -->" + feed, feed + "\n", feed.substr(0, feed.find("<!-- signature"))}) {
    std::ofstream(home / "feed", std::ios::binary) << changed;
    EXPECT_THROW(sign("add", {"https://a.org", package}), std::runtime_error);
    EXPECT_EQ(contents(home / "feed"), changed);
  }
  const std::string publicKey = publicKeyFromText(key).value();
  EXPECT_FALSE(
      std::holds_alternative<std::string_view>(signedFeed(contents(home / "feed"), publicKey)));
  sign("sign", {});
  const std::string renewed = contents(home / "feed");
  EXPECT_TRUE(std::holds_alternative<std::string_view>(signedFeed(renewed, publicKey)));
  sign("add", {"https://a.org", package});
}

TEST_F(UpdateRoadTest, RefusesToPublishWhatCannotBeInstalled) {
  const std::string other = home / "other.deb";
  std::ofstream(other, std::ios::binary) << Release::package("other", "1.3.0", "amd64");
  const auto add = [&](const std::string& url, const std::string& file) {
    ui::ChildProcess::run(
        {"python3", QUORIN_SIGN_UPDATE, "add", home / "key", home / "feed", url, file});
  };
  const std::string before = contents(home / "feed");
  EXPECT_THROW(add("https://a.org", other), std::runtime_error);
  EXPECT_THROW(add("http://a.org", package), std::runtime_error);
  EXPECT_THROW(add("https://a.org", home / "missing.deb"), std::runtime_error);
  EXPECT_THROW(ui::ChildProcess::run({"python3", QUORIN_SIGN_UPDATE, "new-key", home / "key"}),
               std::runtime_error);  // a key is never written over
  EXPECT_EQ(contents(home / "feed"), before);
}

}  // namespace
}  // namespace quorin
