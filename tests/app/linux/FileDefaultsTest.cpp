#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <stdlib.h>

#include "app/linux/FileDefaults.h"
#include "app/linux/InstalledBundle.h"

namespace quorin {
namespace {

class FileDefaultsTest : public testing::Test {
 protected:
  FileDefaultsTest() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "quorin-defaults-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~FileDefaultsTest() override { std::filesystem::remove_all(folder); }

  std::filesystem::path folder;
};

TEST_F(FileDefaultsTest, KeepsTextsFromRunToRun) {
  const std::filesystem::path file = folder / "state" / "defaults.json";
  {
    FileDefaults defaults(file);
    EXPECT_EQ(defaults.string("frame"), std::nullopt);
    defaults.setString("frame", "1 2 3 4 ");
    defaults.setString("other", "\"quoted\"");
    defaults.setString("frame", "5 6 7 8 ");
    EXPECT_EQ(defaults.string("frame"), "5 6 7 8 ");
  }
  FileDefaults again(file);
  EXPECT_EQ(again.string("frame"), "5 6 7 8 ");
  EXPECT_EQ(again.string("other"), "\"quoted\"");
}

TEST_F(FileDefaultsTest, TakesAMalformedFileForNone) {
  const std::filesystem::path file = folder / "defaults.json";
  std::ofstream(file) << "{\"frame\": ";
  FileDefaults defaults(file);
  EXPECT_EQ(defaults.string("frame"), std::nullopt);
  defaults.setString("frame", "x");
  EXPECT_EQ(FileDefaults(file).string("frame"), "x");
}

TEST_F(FileDefaultsTest, PassesOverWhatIsNoText) {
  const std::filesystem::path file = folder / "defaults.json";
  std::ofstream(file) << R"({"frame": 7, "name": "n"})";
  FileDefaults defaults(file);
  EXPECT_EQ(defaults.string("frame"), std::nullopt);
  EXPECT_EQ(defaults.string("name"), "n");
}

TEST_F(FileDefaultsTest, KeepsAChangeForTheRunWhenItCannotBeWritten) {
  std::ofstream(folder / "file") << "in the way";
  FileDefaults defaults(folder / "file" / "defaults.json");
  defaults.setString("frame", "x");
  EXPECT_EQ(defaults.string("frame"), "x");
}

TEST_F(FileDefaultsTest, FindsTheResourcesOfABuiltAndOfAnInstalledProgram) {
  std::filesystem::create_directories(folder / "prefix/bin");
  EXPECT_EQ(InstalledBundle(folder / "prefix/bin/quorin").resourceFolder(), std::nullopt);
  std::filesystem::create_directories(folder / "prefix/share/quorin");
  EXPECT_EQ(InstalledBundle(folder / "prefix/bin/quorin").resourceFolder(),
            folder / "prefix/share/quorin");
  std::filesystem::create_directories(folder / "prefix/bin/resources");
  EXPECT_EQ(InstalledBundle(folder / "prefix/bin/quorin").resourceFolder(),
            folder / "prefix/bin/resources");
}

TEST_F(FileDefaultsTest, KnowsItsVersionAndNoOtherKeys) {
  const InstalledBundle bundle(folder / "quorin");
  EXPECT_THAT(bundle.infoString("CFBundleShortVersionString"),
              testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_EQ(bundle.infoString("NSNothing"), "");
}

}  // namespace
}  // namespace quorin
