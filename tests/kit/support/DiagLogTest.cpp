#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

#include "kit/platform/Platform.h"
#include "kit/platform/XDGFolders.h"
#include "kit/support/DiagLog.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Names = std::vector<std::string>;

// 2026-11-15T11:00:44.123Z
DiagLog::Date known() {
  return DiagLog::Date{20772 * 24h + 11h + 44s + 123ms};
}

const std::string stamp = "2026-11-15T11:00:44.123Z";

TEST(DiagLogLine, HasTheTimeTheCategoryAndTheMessage) {
  EXPECT_EQ(DiagLog::formatLine(known(), "REVEAL", "visible sheet=Sheet1 addr=B3"),
            stamp + " REVEAL visible sheet=Sheet1 addr=B3");
}

TEST(DiagLogLine, HasBothSpacesAroundNothing) {
  EXPECT_EQ(DiagLog::formatLine(known(), "", ""), stamp + "  ");
  EXPECT_EQ(DiagLog::formatLine(known(), "A", ""), stamp + " A ");
  EXPECT_EQ(DiagLog::formatLine(known(), "", "b"), stamp + "  b");
}

TEST(DiagLogLine, IsNotCleaned) {
  EXPECT_EQ(DiagLog::formatLine(known(), "A", "x\r\ny"), stamp + " A x\r\ny");
}

TEST(DiagLogTrimmed, LeavesDataWithinTheLimitAlone) {
  EXPECT_EQ(DiagLog::trimmed("ab\ncd\n", 6), "ab\ncd\n");
  EXPECT_EQ(DiagLog::trimmed("ab\ncd\n", 100), "ab\ncd\n");
  EXPECT_EQ(DiagLog::trimmed("", 0), "");
}

TEST(DiagLogTrimmed, BeginsAfterTheFirstLineFeedOfTheLastBytes) {
  EXPECT_EQ(DiagLog::trimmed("ab\ncd\nef\n", 5), "ef\n");  // of "d\nef\n"
  EXPECT_EQ(DiagLog::trimmed("ab\ncd\nef\n", 4), "ef\n");  // of "\nef\n"
  EXPECT_EQ(DiagLog::trimmed("ab\ncd\nef\n", 3), "");      // of "ef\n"
}

TEST(DiagLogTrimmed, KeepsExactlyTheLastBytesWithoutLineFeed) {
  EXPECT_EQ(DiagLog::trimmed("ab\ncdefgh", 4), "efgh");
  EXPECT_EQ(DiagLog::trimmed("caf\u00E9", 1), "\xA9");
  EXPECT_EQ(DiagLog::trimmed("abc", 0), "");
}

class DiagLogTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  const fs::path file = folder / "Logs/Quorin/quorin.log";
  FaultyFileSystem files;
  const std::string lineX = stamp + " A x\n";  // 29 bytes

  void log(const std::string& message, std::int64_t cap = 1000, std::int64_t trimTo = 500) {
    DiagLog diagLog(file, cap, trimTo, files, known);
    diagLog.log("A", message);
  }
};

TEST_F(DiagLogTest, DoesNotTouchTheDiskWhenMade) {
  { const DiagLog log(file, 1000, 500, files, known); }
  EXPECT_TRUE(files.steps().empty());
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(DiagLogTest, MakesItsFolderWithTheFirstLine) {
  log("x");
  EXPECT_EQ(readFile(file), lineX);
}

TEST_F(DiagLogTest, AppendsToWhatIsThere) {
  fs::create_directories(file.parent_path());
  writeFile(file, "earlier\n");
  log("x");
  log("y");
  EXPECT_EQ(readFile(file), "earlier\n" + lineX + stamp + " A y\n");
}

TEST_F(DiagLogTest, TakesALineThatJustFits) {
  log("x");
  log("x", 58, 20);
  EXPECT_EQ(readFile(file), lineX + lineX);
  EXPECT_EQ(files.steps().back(), "close") << "it was put behind the other";
}

TEST_F(DiagLogTest, WritesOneLineForEachCall) {
  log("one\r\ntwo\nthree\rfour");
  EXPECT_EQ(readFile(file), stamp + " A one  two three four\n");
}

TEST_F(DiagLogTest, KeepsBothSpacesOfAnEmptyLine) {
  DiagLog diagLog(file, 1000, 500, files, known);
  diagLog.log("", "");
  diagLog.flush();
  EXPECT_EQ(readFile(file), stamp + "  \n");
}

TEST_F(DiagLogTest, WritesEverythingBeforeFlushReturns) {
  DiagLog diagLog(file, 100000, 500, files, known);
  std::string expected;
  for (int i = 0; i < 50; ++i) {
    diagLog.log("A", std::to_string(i));
    expected += stamp + " A " + std::to_string(i) + "\n";
  }
  diagLog.flush();
  EXPECT_EQ(readFile(file), expected);
}

TEST_F(DiagLogTest, TakesTheTimeWhenItIsCalled) {
  // The file system holds the queue back until the clock has gone on.
  struct Held : FaultyFileSystem {
    std::shared_future<void> released;
    void makeFolders(const fs::path& path) override {
      released.wait();
      FaultyFileSystem::makeFolders(path);
    }
  };
  std::promise<void> release;
  Held held;
  held.released = release.get_future().share();
  std::atomic<int> minutes = 0;
  DiagLog diagLog(file, 1000, 500, held, [&] { return known() + std::chrono::minutes(minutes); });
  diagLog.log("A", "x");
  minutes = 5;
  diagLog.log("A", "y");
  release.set_value();
  diagLog.flush();
  EXPECT_EQ(readFile(file), lineX + "2026-11-15T11:05:44.123Z A y\n");
}

TEST_F(DiagLogTest, KeepsTheLinesOfManyThreadsWhole) {
  {
    DiagLog diagLog(file, 1'000'000, 500, files, known);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&] {
        for (int i = 0; i < 25; ++i) diagLog.log("A", "x");
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  std::string expected;
  for (int i = 0; i < 100; ++i) expected += lineX;
  EXPECT_EQ(readFile(file), expected);
}

TEST_F(DiagLogTest, IsNotTrimmedAtExactlyTheCap) {
  fs::create_directories(file.parent_path());
  const std::string earlier = std::string(20, 'e') + "\n" + std::string(20, 'f') + "\n";  // 42
  writeFile(file, earlier);
  log("x", 71, 40);
  EXPECT_EQ(readFile(file), earlier + lineX);
}

TEST_F(DiagLogTest, IsTrimmedOneByteBeyondTheCap) {
  fs::create_directories(file.parent_path());
  writeFile(file, std::string(20, 'e') + "\n" + std::string(20, 'f') + "\n");
  log("x", 70, 40);
  EXPECT_EQ(readFile(file), lineX);  // of the last 40 bytes, which begin among the f
  EXPECT_EQ(filesIn(file.parent_path()), Names{"quorin.log"});
}

TEST_F(DiagLogTest, KeepsWholeLinesUpToTheLimitWhenTrimmed) {
  fs::create_directories(file.parent_path());
  std::string earlier;
  for (int i = 0; i < 10; ++i) earlier += "line" + std::to_string(i) + "\n";  // 6 bytes each
  writeFile(file, earlier);
  log("x", 88, 45);  // the last 45 bytes begin inside line7
  EXPECT_EQ(readFile(file), "line8\nline9\n" + lineX);
}

TEST_F(DiagLogTest, TrimsAsTheRuleSaysWhateverTheSizes) {
  for (std::int64_t trimTo = 0; trimTo < 130; ++trimTo) {
    fs::create_directories(file.parent_path());
    std::string earlier;
    for (int i = 0; i < 10; ++i) earlier += "line" + std::to_string(i) + "\n";
    writeFile(file, earlier);
    log("x", 88, trimTo);
    EXPECT_EQ(readFile(file), DiagLog::trimmed(earlier + lineX, trimTo)) << trimTo;
  }
}

TEST_F(DiagLogTest, IsWrittenWholeOrNotAtAllWhenTrimmed) {
  fs::create_directories(file.parent_path());
  const std::string earlier = std::string(500, 'e') + "\n";
  writeFile(file, earlier);
  log("x", 100, 50);
  const std::size_t steps = files.steps().size();
  ASSERT_EQ(files.steps().back(), "syncFolder");
  for (std::size_t step = 0; step + 1 < steps; ++step) {
    writeFile(file, earlier);
    FaultyFileSystem faulty;
    faulty.failAt(step, ENOSPC);
    {
      DiagLog diagLog(file, 100, 50, faulty, known);
      diagLog.log("A", "x");
    }
    const std::string kind = files.steps()[step];
    const bool survives = kind == "makeFolders" || kind == "read";
    EXPECT_EQ(readFile(file), survives ? lineX : earlier) << kind;
    EXPECT_EQ(filesIn(file.parent_path()), Names{"quorin.log"}) << kind;
  }
}

TEST_F(DiagLogTest, HasALineAcrossTwoPagesWholeOrNotAtAllWhereverTheProcessDies) {
  const std::string earlier = std::string(4080, 'e') + "\n";  // 15 bytes before the next page
  bool killed = true;
  std::size_t whole = 0;
  for (std::size_t step = 0; killed; ++step) {
    fs::remove_all(file.parent_path());
    fs::create_directories(file.parent_path());
    writeFile(file, earlier);
    killed = killedDuring([&] {
      FaultyFileSystem deadly;
      deadly.killAt(step);
      DiagLog diagLog(file, 100'000, 500, deadly, known);
      diagLog.log("A", "x");
      diagLog.flush();
    });
    const std::string left = readFile(file);
    if (left == earlier + lineX) ++whole;
    EXPECT_TRUE(left == earlier || left == earlier + lineX) << step;
  }
  EXPECT_GE(whole, 1u);
}

TEST_F(DiagLogTest, AppendsAcrossTwoPagesWhereNoSecondFileCanBeMade) {
  fs::create_directories(file.parent_path());
  const std::string earlier = std::string(4080, 'e') + "\n";
  writeFile(file, earlier);
  files.failEvery("create", ENOSPC);
  log("x", 100'000, 500);
  EXPECT_EQ(readFile(file), earlier + lineX);
}

TEST_F(DiagLogTest, AppendsALineThatEndsWithItsPage) {
  fs::create_directories(file.parent_path());
  const std::string earlier = std::string(4066, 'e') + "\n";  // 29 bytes before the next page
  writeFile(file, earlier);
  log("x", 100'000, 500);
  EXPECT_EQ(readFile(file), earlier + lineX);
  EXPECT_EQ(files.steps(), (Names{"makeFolders", "status", "openToAppend", "append", "close"}));
}

TEST_F(DiagLogTest, LosesALineItCannotWriteAndNothingElse) {
  fs::create_directories(file.parent_path());
  writeFile(file, "earlier\n");
  for (const char* kind : {"status", "openToAppend", "append", "close"}) {
    FaultyFileSystem faulty;
    faulty.failEvery(kind, ENOSPC);
    {
      DiagLog diagLog(file, 1000, 500, faulty, known);
      diagLog.log("A", "lost");
    }
    EXPECT_EQ(readFile(file), "earlier\n") << kind;
  }
  log("x");
  EXPECT_EQ(readFile(file), "earlier\n" + lineX);
}

TEST_F(DiagLogTest, StaysSilentWhereItsFolderCannotBeMade) {
  writeFile(folder / "Logs", "a file where the folder should be");
  log("x");
  EXPECT_EQ(filesIn(folder.path()), Names{"Logs"});
}

TEST_F(DiagLogTest, StaysSilentWhereAFolderOrADeviceStandsInItsPlace) {
  fs::create_directories(file);
  log("x");
  EXPECT_TRUE(fs::is_empty(file));
  fs::remove(file);
  fs::create_symlink("/dev/full", file);
  log("x");
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(DiagLogTest, IsTheUsersAloneWhateverTheUmask) {
  const mode_t mask = ::umask(0);
  log("x");
  ::umask(mask);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms(0700));
}

TEST_F(DiagLogTest, ReplacesAReadOnlyFile) {
  fs::create_directories(file.parent_path());
  fs::permissions(folder.path(), fs::perms(0777));
  fs::permissions(folder / "Logs", fs::perms(0777));
  fs::permissions(file.parent_path(), fs::perms(0777));
  writeFile(file, "earlier\n");
  fs::permissions(file, fs::perms(0444));
  const OrdinaryUser user;
  log("x");
  EXPECT_EQ(readFile(file), "earlier\n" + lineX);
}

TEST_F(DiagLogTest, ReadsOnlyTheEndOfAFileThatHasGrownHuge) {
  fs::create_directories(file.parent_path());
  writeFile(file, "");
  fs::resize_file(file, std::uintmax_t{1} << 36);  // a hole: takes no room
  log("x", 1000, 500);
  EXPECT_EQ(readFile(file), "");  // no line before the last byte: everything after it is kept
}

TEST_F(DiagLogTest, SharedIsOneInTheLibraryFolder) {
  auto platform = std::make_unique<Platform>();
  platform->folders = std::make_unique<XDGFolders>(
      Environment{{"XDG_STATE_HOME", folder.path().string()}, {"XDG_DATA_HOME", "/nowhere"}});
  auto before = Platform::install(std::move(platform));
  DiagLog& shared = DiagLog::shared();
  EXPECT_EQ(&DiagLog::shared(), &shared);
  EXPECT_EQ(shared.url(), file);
  shared.log("LAUNCH", "here");
  shared.flush();
  EXPECT_TRUE(readFile(file).ends_with("Z LAUNCH here\n"));
  Platform::install(std::move(before));
}

TEST(DiagLogDeathTest, StopsWhereThereIsNoLibraryFolder) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        auto platform = std::make_unique<Platform>();
        platform->folders = std::make_unique<XDGFolders>(Environment{});
        Platform::install(std::move(platform));
        DiagLog::shared();
      },
      "this user has no library folder for the diagnostic log");
}

}  // namespace
}  // namespace quorin
