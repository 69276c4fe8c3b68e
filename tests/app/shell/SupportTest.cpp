#include <ctime>

#include "app/shell/Support.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
namespace fs = std::filesystem;

class SupportTest : public ShellFixture {
 protected:
  SupportTest() {
    platform.bundle().info["QXSupportEmail"] = "help@example.org";
    fs::create_directories(folder / "desktop");
    fs::create_directories(folder / "temporary");
    platform.packer.onZip = [this](const fs::path& packed, const fs::path& file) {
      packedName = packed.filename().string();
      for (const auto& entry : fs::directory_iterator(packed))
        packedFiles[entry.path().filename().string()] = readFile(entry.path());
      writeFile(file, "zip");
    };
  }

  fs::path writeCrash() {
    const fs::path crash = folder / "library/Logs/DiagnosticReports/Quorin-1.ips";
    writeFile(crash, "stack");
    return crash;
  }

  std::string stamp() const { return ProblemReport::stamp(ISO::fromClock(platform.clock().now())); }
  std::string zipName() const { return "Quorin-" + stamp() + ".zip"; }

  std::size_t filesIn(const std::string& name) const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder / name), fs::directory_iterator()));
  }

  FakeFolders folders{folder};
  Support support{{platform, folders, *log}};
  std::string packedName;
  std::map<std::string, std::string> packedFiles;
};

TEST_F(SupportTest, LooksForCrashReportsBesideTheLogs) {
  EXPECT_EQ(support.diagnosticsDir(), folder / "library/Logs/DiagnosticReports");
}

TEST_F(SupportTest, SavesTheReportOnTheDesktopAndOpensAMail) {
  writeCrash();
  log->log("TEST", "the last line");
  support.report();
  EXPECT_EQ(packedName, "Quorin-report-" + stamp());
  EXPECT_THAT(packedFiles["quorin.log"], HasSubstr("the last line")) << "the log was written out";
  EXPECT_EQ(packedFiles["Quorin-1.ips"], "stack");
  EXPECT_EQ(packedFiles["system.txt"], "Quorin 1.2.3\nTestOS 7\nSheets not found\n");
  EXPECT_EQ(readFile(folder / "desktop" / zipName()), "zip");
  EXPECT_EQ(filesIn("temporary"), 0u);
  EXPECT_THAT(takeJournal(),
              ElementsAre("openURL mailto:help@example.org?subject=Quorin%20problem%20%28v1.2.3%29"
                          "&body=Please%20attach%20" +
                          zipName() +
                          "%20from%20your%20Desktop%20and%20describe%20what%20happened%3A%0A%0A"
                          "What%20I%20did%3A%0AWhat%20I%20expected%3A%0A"
                          "What%20happened%20instead%3A"));
}

TEST_F(SupportTest, ReportsWithoutACrash) {
  support.report();
  EXPECT_EQ(packedFiles.count("Quorin-1.ips"), 0u);
  EXPECT_EQ(packedFiles.count("system.txt"), 1u);
  EXPECT_THAT(takeJournal(), ElementsAre(StartsWith("openURL mailto:")));
}

TEST_F(SupportTest, ReplacesTheZipOfTheSameMinute) {
  writeFile(folder / "desktop" / zipName(), "old");
  support.report();
  EXPECT_EQ(readFile(folder / "desktop" / zipName()), "zip");
}

TEST_F(SupportTest, LogsAFailedPackingAndOpensNoMail) {
  platform.packer.status = 1;
  support.report();
  EXPECT_THAT(logged(), ElementsAre("ERROR problem report: ditto failed"));
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_EQ(filesIn("temporary"), 0u);
}

TEST_F(SupportTest, LogsAFailedCopyAndLeavesNothingBehind) {
  fs::create_directories(folder / "library/Logs/DiagnosticReports/Quorin-1.ips/inside");
  support.report();
  EXPECT_THAT(logged(), ElementsAre(StartsWith("ERROR problem report: ")));
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_EQ(filesIn("temporary"), 0u);
}

TEST_F(SupportTest, LogsThatNothingCanPack) {
  platform.hasPacker = false;
  support.report();
  EXPECT_THAT(logged(), ElementsAre("ERROR problem report: nothing here can pack files"));
}

TEST_F(SupportTest, LogsThatThereIsNoPlaceForTheReportsParts) {
  fs::remove(folder / "temporary");
  support.report();
  EXPECT_THAT(logged(), ElementsAre(StartsWith("ERROR problem report: cannot make ")));
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_EQ(filesIn("desktop"), 0u);
}

TEST_F(SupportTest, LeavesTheMailOutWithoutAnAddress) {
  platform.bundle().info.erase("QXSupportEmail");
  support.report();
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_TRUE(fs::exists(folder / "desktop" / zipName()));
}

TEST_F(SupportTest, AsksNothingWithoutACrash) {
  bool went = false;
  support.promptIfCrashed(std::nullopt, [&] { went = true; });
  EXPECT_TRUE(went);
  EXPECT_THAT(takeJournal(), IsEmpty());
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(SupportTest, AsksNothingAboutACrashOfBefore) {
  const ISO::Date crashed = *ProblemReport::mtime(writeCrash());
  bool went = false;
  support.promptIfCrashed(crashed, [&] { went = true; });
  EXPECT_TRUE(went);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(SupportTest, AsksAfterACrashAndGoesOnWithoutAReport) {
  const ISO::Date crashed = *ProblemReport::mtime(writeCrash());
  bool went = false;
  support.promptIfCrashed(crashed - std::chrono::seconds(1), [&] { went = true; });
  EXPECT_FALSE(went) << "the answer comes first";
  EXPECT_THAT(logged(), ElementsAre("SUPPORT crash report found since last launch"));
  EXPECT_THAT(takeJournal(), ElementsAre("activateSelf", "alert Quorin crashed last time"));
  const Alert expected{"Quorin crashed last time",
                       "Send a report? A zip with the crash log and the diagnostic log (no cell "
                       "contents) is saved to your Desktop; you attach it to an email.",
                       {"Report…", "Not Now"}};
  EXPECT_EQ(platform.alerts().shown, std::vector<Alert>{expected});
  platform.alerts().press(1);
  EXPECT_TRUE(went);
  EXPECT_THAT(takeJournal(), IsEmpty());
}

TEST_F(SupportTest, ReportsOnTheFirstButtonBeforeItGoesOn) {
  writeCrash();
  std::vector<std::string> before;
  support.promptIfCrashed(std::nullopt, [&] { before = takeJournal(); });
  takeJournal();
  platform.alerts().press(0);
  EXPECT_THAT(before, ElementsAre(StartsWith("openURL mailto:")));
}

}  // namespace
}  // namespace quorin
