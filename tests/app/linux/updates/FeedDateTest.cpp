#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>

#include "app/linux/updates/FeedDate.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

constexpr ISO::Date date{seconds(1'794'740'548)};  // 2026-11-15T11:02:28Z
constexpr hours day(24);

TEST(FeedDate, IsRefusedBeforeTheNewestSeen) {
  EXPECT_EQ(FeedDate::refused(date, std::nullopt, date), std::nullopt);
  EXPECT_EQ(FeedDate::refused(date, date, date), std::nullopt);
  EXPECT_EQ(FeedDate::refused(date, date - seconds(1), date), std::nullopt);
  EXPECT_EQ(
      FeedDate::refused(date, date + day, date + day),
      (UpdateFailure{UpdateFault::olderFeed, "signed on 2026-11-15, the other one on 2026-11-16"}));
  EXPECT_TRUE(FeedDate::refused(date, date + seconds(1), date + day));
}

TEST(FeedDate, IsRefusedInTheFuture) {
  EXPECT_EQ(FeedDate::refused(date, std::nullopt, date - day), std::nullopt);
  EXPECT_EQ(FeedDate::refused(date, std::nullopt, date - day - seconds(1)),
            (UpdateFailure{UpdateFault::futureFeed, "2026-11-15"}));
}

TEST(FeedDate, IsWarnedOfAfterThirtyDays) {
  EXPECT_EQ(FeedDate::warning(date, date - day), "");
  EXPECT_EQ(FeedDate::warning(date, date + 30 * day), "");
  EXPECT_EQ(FeedDate::warning(date, date + 30 * day + seconds(1)),
            "The list of versions was signed on 2026-11-15, more than 30 days ago. There may be "
            "versions that it does not name.");
}

TEST(FeedDate, IsRememberedForThisUserAlone) {
  const TemporaryFolder home;
  const std::filesystem::path file = home / "data/feed-date";
  const mode_t before = umask(0);
  FeedDate::remember(file, date);
  umask(before);
  EXPECT_EQ(FeedDate::load(file), date);
  FeedDate::remember(file, date + day);
  EXPECT_EQ(FeedDate::load(file), date + day);
  struct stat status {};
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  std::ifstream saved(file);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(saved), {}), "2026-11-16T11:02:28Z\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(home / "data"), {}), 1);
}

TEST(FeedDate, IsNoneInAFileThatHoldsAnythingElse) {
  const TemporaryFolder home;
  EXPECT_EQ(FeedDate::load(home / "nothing"), std::nullopt);
  EXPECT_EQ(FeedDate::load(home / "nothing/feed-date"), std::nullopt);
  EXPECT_EQ(FeedDate::load(home / "."), std::nullopt);
  for (const std::string& text :
       {std::string(), std::string("\n"), std::string("2026-11-15"), std::string("{}"),
        std::string("2026-11-15T11:02:28Z\n\n"), "2026-11-15T11:02:28Z" + std::string(100, ' ')}) {
    std::ofstream(home / "feed-date") << text;
    EXPECT_EQ(FeedDate::load(home / "feed-date"), std::nullopt) << text;
  }
}

TEST(FeedDate, NeedNotBeWritable) {
  const TemporaryFolder home;
  std::ofstream(home / "file") << "in the way";
  FeedDate::remember(home / "file/feed-date", date);
  FeedDate::remember(home / ".", date);
  EXPECT_EQ(FeedDate::load(home / "file/feed-date"), std::nullopt);
}

}  // namespace
}  // namespace quorin
