#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "kit/platform/XDGFolders.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;

TEST(XDGFolders, UsesTheVariables) {
  const XDGFolders folders({{"HOME", "/home/a"},
                            {"XDG_DATA_HOME", "/data"},
                            {"XDG_STATE_HOME", "/state"},
                            {"TMPDIR", "/scratch"}});
  EXPECT_EQ(folders.applicationSupport(), "/data");
  EXPECT_EQ(folders.library(), "/state");
  EXPECT_EQ(folders.temporary(), "/scratch");
}

TEST(XDGFolders, FallsBackToTheHomeFolderWhenTheyAreUnset) {
  const XDGFolders folders(Environment{{"HOME", "/home/a"}});
  EXPECT_EQ(folders.applicationSupport(), "/home/a/.local/share");
  EXPECT_EQ(folders.library(), "/home/a/.local/state");
  EXPECT_EQ(folders.temporary(), "/tmp");
}

TEST(XDGFolders, TakesEmptyAndRelativeValuesForUnset) {
  for (const char* value : {"", "relative", "./here", "~/x"}) {
    const XDGFolders folders({{"HOME", "/home/a"},
                              {"XDG_DATA_HOME", value},
                              {"XDG_STATE_HOME", value},
                              {"TMPDIR", value}});
    EXPECT_EQ(folders.applicationSupport(), "/home/a/.local/share") << value;
    EXPECT_EQ(folders.library(), "/home/a/.local/state") << value;
    EXPECT_EQ(folders.temporary(), "/tmp") << value;
  }
}

TEST(XDGFolders, HasNoFoldersWithoutAHome) {
  for (const XDGFolders& folders :
       {XDGFolders(Environment{}), XDGFolders(Environment{{"HOME", "relative"}})}) {
    EXPECT_EQ(folders.applicationSupport(), "");
    EXPECT_EQ(folders.library(), "");
    EXPECT_EQ(folders.desktop(), "");
  }
}

class XDGDesktop : public testing::Test {
 protected:
  XDGDesktop() { fs::create_directories(home / ".config"); }

  void configure(const std::string& text) {
    std::ofstream(home / ".config" / "user-dirs.dirs") << text;
  }
  fs::path desktop() const { return XDGFolders(Environment{{"HOME", home.string()}}).desktop(); }

  TemporaryFolder folder;
  fs::path home = folder / "home";
};

TEST_F(XDGDesktop, IsTheConfiguredFolder) {
  fs::create_directories(home / "Schreib tisch");
  configure(
      "# comment\nXDG_DOWNLOAD_DIR=\"$HOME/Desktop\"\n"
      "XDG_DESKTOP_DIR=\"$HOME/Schreib tisch\"\n");
  EXPECT_EQ(desktop(), home / "Schreib tisch");
  fs::create_directories(folder / "shared \"desk\"");
  configure("  XDG_DESKTOP_DIR=\"" + folder.path().string() + "/shared \\\"desk\\\"\"\n");
  EXPECT_EQ(desktop(), folder / "shared \"desk\"");
  configure("XDG_DESKTOP_DIR=\"\\" + folder.path().string() + "\"\n");  // "\/tmp/..."
  EXPECT_EQ(desktop(), folder.path());
}

TEST_F(XDGDesktop, IsReadFromTheConfigurationFolder) {
  fs::create_directories(folder / "config");
  fs::create_directories(home / "Elsewhere");
  std::ofstream(folder / "config/user-dirs.dirs") << "XDG_DESKTOP_DIR=\"$HOME/Elsewhere\"\n";
  const XDGFolders folders(
      {{"HOME", home.string()}, {"XDG_CONFIG_HOME", (folder / "config").string()}});
  EXPECT_EQ(folders.desktop(), home / "Elsewhere");
}

TEST_F(XDGDesktop, IsDesktopInTheHomeFolderWhenNothingIsConfigured) {
  fs::create_directories(home / "Desktop");
  EXPECT_EQ(desktop(), home / "Desktop");
  configure("XDG_DESKTOP_DIR=\"relative\"\nXDG_DESKTOP_DIRS=\"/tmp\"\n");
  EXPECT_EQ(desktop(), home / "Desktop");
}

TEST_F(XDGDesktop, IsTheHomeFolderWhenThereIsNoSuchFolder) {
  EXPECT_EQ(desktop(), home);
  fs::create_directories(home / "Desktop");
  configure("XDG_DESKTOP_DIR=\"$HOME/Gone\"\n");
  EXPECT_EQ(desktop(), home);
}

TEST(Environment, HoldsTheVariablesOfTheProcess) {
  setenv("QUORIN_TEST_VARIABLE", "a=b", 1);
  EXPECT_EQ(processEnvironment().at("QUORIN_TEST_VARIABLE"), "a=b");
  unsetenv("QUORIN_TEST_VARIABLE");
  EXPECT_FALSE(processEnvironment().contains("QUORIN_TEST_VARIABLE"));
}

TEST(Environment, TakesTheHomeFolderFromTheUserDatabaseWhereItIsUnset) {
  const char* given = std::getenv("HOME");
  const std::string before = given ? given : "";
  const std::string expected = getpwuid(getuid())->pw_dir;
  unsetenv("HOME");
  EXPECT_EQ(processEnvironment().at("HOME"), expected);
  setenv("HOME", "", 1);
  EXPECT_EQ(processEnvironment().at("HOME"), expected);
  setenv("HOME", "/somewhere", 1);
  EXPECT_EQ(processEnvironment().at("HOME"), "/somewhere");
  given ? setenv("HOME", before.c_str(), 1) : unsetenv("HOME");
}

}  // namespace
}  // namespace quorin
