#include <gmock/gmock.h>

#include "app/linux/XDGLoginItem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class XDGLoginItemTest : public testing::Test {
 protected:
  std::vector<std::string> autostart() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  void write(const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    writeFile(file, text);
  }

  TemporaryFolder folder;
  const std::filesystem::path file = folder / "config" / "autostart" / "quorin.desktop";
  XDGLoginItem item{folder / "bin" / "quorin", folder / "config"};
};

TEST_F(XDGLoginItemTest, MakesAndRemovesTheEntry) {
  EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(item.registerItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::enabled);
  EXPECT_THAT(autostart(), ElementsAre("quorin.desktop"));
  EXPECT_THAT(readFile(file), HasSubstr("[Desktop Entry]\nType=Application\n"));
  EXPECT_THAT(readFile(file),
              HasSubstr("\nExec=\"" + (folder / "bin" / "quorin").string() + "\"\n"));
  EXPECT_EQ(item.unregisterItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
  EXPECT_THAT(autostart(), ElementsAre());
  EXPECT_EQ(item.unregisterItem(), std::nullopt) << "it is gone already";
}

TEST_F(XDGLoginItemTest, CountsAHiddenEntryAsNone) {
  write("[Desktop Entry]\nExec=quorin\n Hidden = true \n");
  EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(item.registerItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::enabled);
}

TEST_F(XDGLoginItemTest, CountsEveryOtherEntryAsEnabled) {
  for (const char* text : {"", "[Desktop Entry]\nHidden=false\n", "[Desktop Entry]\nXHidden=true\n",
                           "[Desktop Entry]\nExec=a\n[Desktop Action x]\nHidden=true\n",
                           "[Desktop Entry]\n#Hidden=true"}) {
    write(text);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled) << text;
  }
}

TEST_F(XDGLoginItemTest, QuotesTheProgram) {
  XDGLoginItem odd("/opt/a b%\"$`\\/bin/quorin", folder / "config");
  EXPECT_EQ(odd.registerItem(), std::nullopt);
  EXPECT_THAT(readFile(file), HasSubstr(R"(Exec="/opt/a b%%\\"\\$\\`\\\\/bin/quorin")"
                                        "\n"));
}

TEST_F(XDGLoginItemTest, TellsWhatStandsInTheWay) {
  writeFile(folder / "config", "no folder");
  const std::optional<std::string> error = item.registerItem();
  ASSERT_TRUE(error);
  EXPECT_THAT(*error, HasSubstr("config"));
  EXPECT_TRUE(item.unregisterItem());
}

TEST_F(XDGLoginItemTest, IsInstalledBesideItsOwnFolder) {
  EXPECT_FALSE(item.isInstalled());
  std::filesystem::create_directories(folder / "share" / "quorin");
  EXPECT_TRUE(item.isInstalled());
  EXPECT_FALSE(XDGLoginItem(folder / "build" / "quorin", folder / "config").isInstalled());
}

}  // namespace
}  // namespace quorin
