#include <gmock/gmock.h>

#include "app/linux/LinuxVersions.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

class LinuxVersionsTest : public testing::Test {
 protected:
  LinuxVersionsTest() {
    writeFile(release, "ID=debian\nPRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n");
    for (const char* name : {"bin", "office/program", "office/share/registry"}) {
      std::filesystem::create_directories(folder / name);
    }
    writeFile(folder / "office/program/soffice", "");
    std::filesystem::create_symlink("../office/program/soffice", folder / "bin/soffice");
  }

  SystemVersions versions() const {
    return linuxVersions({{"PATH", "/none:" + (folder / "bin").string()}}, release);
  }

  TemporaryFolder folder;
  const std::filesystem::path release = folder / "os-release";
};

TEST_F(LinuxVersionsTest, NamesTheDistributionAndTheOffice) {
  writeFile(folder / "office/share/registry/main.xcd",
            "<prop oor:name=\"ooSetupVersionAboutBox\" oor:type=\"xs:string\"><value/></prop>"
            "<prop oor:name=\"ooSetupVersion\"><value>7.4</value></prop>"
            "<prop oor:name=\"ooSetupVersionAboutBox\">\n <value>7.4.7.2</value></prop>"
            "<prop oor:name=\"ooSetupVersionAboutBoxSuffix\"><value/></prop>");
  EXPECT_EQ(versions(),
            (SystemVersions{"Linux", "Debian GNU/Linux 12 (bookworm)", "LibreOffice", "7.4.7.2"}));
}

TEST_F(LinuxVersionsTest, FindsNoOfficeWhereThereIsNone) {
  EXPECT_EQ(versions().spreadsheetVersion, std::nullopt) << "no settings";
  writeFile(folder / "office/share/registry/main.xcd",
            "<prop oor:name=\"ooSetupVersionAboutBox\"><value></value></prop>");
  EXPECT_EQ(versions().spreadsheetVersion, std::nullopt) << "no version";
  EXPECT_EQ(linuxVersions({{"PATH", "/none"}}, folder / "none"),
            (SystemVersions{"Linux", "", "LibreOffice", std::nullopt}));
  EXPECT_EQ(linuxVersions({}, release).spreadsheetVersion, std::nullopt);
}

TEST(LinuxVersions, KnowsTheOfficeOfThisMachine) {
  const SystemVersions versions = linuxVersions(processEnvironment(), "/etc/os-release");
  ASSERT_TRUE(versions.spreadsheetVersion);
  EXPECT_THAT(*versions.spreadsheetVersion,
              testing::ContainsRegex("^[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+$"));
  EXPECT_NE(versions.systemVersion, "");
}

}  // namespace
}  // namespace quorin
