#include <cstdlib>
#include <ctime>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <sys/stat.h>

#include "kit/support/ProblemReport.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
namespace fs = std::filesystem;

ISO::Date localTime(int year, int month, int day, int hour, int minute) {
  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  local.tm_hour = hour;
  local.tm_min = minute;
  local.tm_isdst = -1;
  return ISO::Date(std::chrono::seconds(std::mktime(&local)));
}

class ProblemReportTest : public testing::Test {
 protected:
  fs::path write(const std::string& name, const std::string& text = "") {
    const fs::path path = folder / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
    return path;
  }

  // A file that was changed so long after the first of all.
  fs::path writeAt(const std::string& name, std::chrono::seconds after) {
    const fs::path path = write(name);
    fs::last_write_time(path, first + after);
    return path;
  }

  static std::string contents(const fs::path& path) {
    std::ostringstream out;
    out << std::ifstream(path).rdbuf();
    return out.str();
  }

  static std::vector<std::string> names(const fs::path& path) {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(path))
      found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
  }

  TemporaryFolder folder;
  const fs::file_time_type first = fs::file_time_type::clock::now() - 24h;
  const ISO::Date morning = localTime(2026, 3, 3, 9, 5);
};

class FakeArchiver : public Archiver {
 public:
  int zip(const fs::path& packed, const fs::path& file) override {
    existed = fs::exists(file);
    std::ofstream(file) << "zip of " << packed.filename().string();
    return status;
  }
  int status = 0;
  bool existed = false;
};

TEST_F(ProblemReportTest, FindsTheCrashReportThatWasChangedLast) {
  writeAt("Quorin-2.ips", 20s);
  const fs::path newest = writeAt("Quorin-1.ips", 30s);
  writeAt("Quorin-3.ips", 10s);
  EXPECT_EQ(ProblemReport::newestCrash(folder.path(), "Quorin-"), newest);
}

TEST_F(ProblemReportTest, KeepsTheFirstListedOfThoseChangedAtTheSameTime) {
  for (const char* name : {"Quorin-1.ips", "Quorin-2.ips", "Quorin-3.ips", "Quorin-4.ips"})
    writeAt(name, 10s);
  const fs::path firstListed = fs::directory_iterator(folder.path())->path();
  EXPECT_EQ(ProblemReport::newestCrash(folder.path(), "Quorin-"), firstListed);
}

TEST_F(ProblemReportTest, PassesOverFilesOfOtherNames) {
  const fs::path own = writeAt("Quorin-a.ips", 10s);
  writeAt("Quorin-x.crash", 20s);
  writeAt("Other-x.ips", 30s);
  writeAt("xQuorin-b.ips", 40s);
  writeAt("Quorin-c.ips.bak", 50s);
  EXPECT_EQ(ProblemReport::newestCrash(folder.path(), "Quorin-"), own);
}

TEST_F(ProblemReportTest, FindsNothingInAnEmptyOrMissingFolder) {
  EXPECT_EQ(ProblemReport::newestCrash(folder.path(), "Quorin-"), std::nullopt);
  EXPECT_EQ(ProblemReport::newestCrash(folder / "none", "Quorin-"), std::nullopt);
  EXPECT_EQ(ProblemReport::newestCrash(write("file"), "Quorin-"), std::nullopt);
}

TEST_F(ProblemReportTest, TellsOfACrashSinceADate) {
  const fs::path crash = writeAt("Quorin-1.ips", 0s);
  const ISO::Date date = *ProblemReport::mtime(crash);
  EXPECT_EQ(ProblemReport::crash(std::nullopt, folder.path(), "Quorin-"), crash);
  EXPECT_EQ(ProblemReport::crash(date - 1s, folder.path(), "Quorin-"), crash);
  EXPECT_EQ(ProblemReport::crash(date, folder.path(), "Quorin-"), std::nullopt);
  EXPECT_EQ(ProblemReport::crash(ISO::fromClock(std::chrono::system_clock::now()), folder.path(),
                                 "Quorin-"),
            std::nullopt);
}

TEST_F(ProblemReportTest, KnowsWhenAFileWasChanged) {
  const auto before = std::chrono::system_clock::now() - 2s;
  const fs::path file = write("new");
  EXPECT_GT(*ProblemReport::mtime(file), before);
  EXPECT_LT(*ProblemReport::mtime(file), std::chrono::system_clock::now() + 2s);
  EXPECT_EQ(ProblemReport::mtime(folder / "none"), std::nullopt);
}

TEST_F(ProblemReportTest, StagesTheLogTheCrashReportAndTheSystemsDescription) {
  const fs::path log = write("logs/quorin.log", "lines");
  const fs::path crash = write("reports/Quorin-1.ips", "stack");
  const fs::path staged = ProblemReport::stage(log, crash, "Quorin 1.0\n", folder / "a/b", morning);
  EXPECT_EQ(staged, folder / "a/b/Quorin-report-2026-03-03-0905");
  EXPECT_THAT(names(staged), ElementsAre("Quorin-1.ips", "quorin.log", "system.txt"));
  EXPECT_EQ(contents(staged / "quorin.log"), "lines");
  EXPECT_EQ(contents(staged / "Quorin-1.ips"), "stack");
  EXPECT_EQ(contents(staged / "system.txt"), "Quorin 1.0\n");
}

// A time zone while it lives.
class TimeZone {
 public:
  explicit TimeZone(const char* name) {
    if (const char* before = std::getenv("TZ")) before_ = before;
    set(name);
  }
  ~TimeZone() { set(before_ ? before_->c_str() : nullptr); }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  static void set(const char* name) {
    if (name) {
      setenv("TZ", name, 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  std::optional<std::string> before_;
};

TEST_F(ProblemReportTest, StampsTheLocalTimeOn24Hours) {
  // 2026-11-15T11:02:28Z, counted by hand: 20772 days after 1970-01-01 and 39748 seconds.
  const ISO::Date noon{std::chrono::seconds(20772LL * 86400 + 39748)};
  {
    const TimeZone east("EAST-5:30");
    EXPECT_EQ(ProblemReport::stamp(noon), "2026-11-15-1632");
    EXPECT_EQ(ProblemReport::stamp(noon + 8h), "2026-11-16-0032");
  }
  const TimeZone west("WEST+12");
  EXPECT_EQ(ProblemReport::stamp(noon), "2026-11-14-2302");
}

TEST_F(ProblemReportTest, StagesAnewInPlaceOfWhatIsThere) {
  write("Quorin-report-2026-03-03-0905/old", "old");
  const fs::path staged =
      ProblemReport::stage(folder / "none.log", std::nullopt, "", folder.path(), morning);
  EXPECT_THAT(names(staged), ElementsAre("system.txt"));
}

TEST_F(ProblemReportTest, ThrowsWhatTheFileSystemRefuses) {
  const fs::path file = write("file");
  EXPECT_THROW(ProblemReport::stage(file, std::nullopt, "", file, morning), std::system_error);
  EXPECT_THROW(ProblemReport::stage(file, folder / "gone.ips", "", folder.path(), morning),
               std::system_error);
}

TEST_F(ProblemReportTest, PacksIntoANewFile) {
  FakeArchiver archiver;
  const fs::path zip = write("Quorin-1.zip", "old");
  ProblemReport::zip(folder / "staged", zip, archiver);
  EXPECT_FALSE(archiver.existed);
  EXPECT_EQ(contents(zip), "zip of staged");
}

unsigned openTo(const fs::path& path) {
  return static_cast<unsigned>(fs::status(path).permissions());
}

TEST_F(ProblemReportTest, IsTheUsersAloneWhateverTheUmask) {
  const fs::path log = write("logs/quorin.log", "lines");
  fs::permissions(log, fs::perms(0600));
  const mode_t mask = ::umask(0);
  FakeArchiver archiver;
  const fs::path staged = ProblemReport::stage(log, {}, "system", folder.path(), morning);
  ProblemReport::zip(staged, folder / "Quorin-1.zip", archiver);
  EXPECT_EQ(::umask(mask), 0u) << "it is put back";
  EXPECT_EQ(openTo(staged), 0700u);
  EXPECT_EQ(openTo(staged / "system.txt"), 0600u);
  EXPECT_EQ(openTo(folder / "Quorin-1.zip"), 0600u);
}

TEST_F(ProblemReportTest, RemovesNoFolderThatItDidNotMake) {
  FakeArchiver archiver;
  const fs::path kept = write("Quorin-1.zip/kept", "kept");
  try {
    ProblemReport::zip(folder / "staged", folder / "Quorin-1.zip", archiver);
    FAIL() << "it failed";
  } catch (const ProblemReportError& error) {
    EXPECT_STREQ(error.what(), "there is a folder in the place of Quorin-1.zip");
  }
  EXPECT_EQ(contents(kept), "kept");
}

TEST_F(ProblemReportTest, ThrowsTheArchiversStatus) {
  FakeArchiver archiver;
  archiver.status = 7;
  try {
    ProblemReport::zip(folder / "staged", folder / "Quorin-1.zip", archiver);
    FAIL() << "it failed";
  } catch (const ProblemReportError& error) {
    EXPECT_EQ(error.code(), 7);
    EXPECT_STREQ(error.what(), "ditto failed");
    EXPECT_STREQ(ProblemReportError::domain, "ProblemReport");
  }
}

TEST_F(ProblemReportTest, DescribesTheSystemInThreeLines) {
  EXPECT_EQ(
      ProblemReport::systemInfo("1.2", {"macOS", "Version 14.2 (Build 23C64)", "Excel", "16.80"}),
      "Quorin 1.2\nmacOS Version 14.2 (Build 23C64)\nExcel 16.80\n");
  EXPECT_EQ(ProblemReport::systemInfo("1.2", {"Linux", "Debian 12", "LibreOffice", {}}),
            "Quorin 1.2\nLinux Debian 12\nLibreOffice not found\n");
}

TEST_F(ProblemReportTest, MakesAMailLink) {
  EXPECT_EQ(ProblemReport::mailto("help@example.org", "Quorin problem (v1.0)", "a&b=c\n…"),
            "mailto:help@example.org?subject=Quorin%20problem%20%28v1.0%29"
            "&body=a%26b%3Dc%0A%E2%80%A6");
  EXPECT_EQ(ProblemReport::mailto("", "s", "b"), std::nullopt);
}

}  // namespace
}  // namespace quorin
