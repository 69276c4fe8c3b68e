#include <gtest/gtest.h>

#include "kit/platform/Platform.h"
#include "kit/platform/XDGFolders.h"

namespace quorin {
namespace {

class Running : public TargetApplication {
 public:
  bool isRunning() override { return true; }
};

TEST(PlatformDeathTest, StopsWithAClearMessageWhenNoneIsInstalled) {
  EXPECT_DEATH(platformFolders(), "no platform with folders is installed");
  EXPECT_DEATH(targetApplication(), "no platform with a target application is installed");
}

TEST(Platform, GivesThePartsOfTheInstalledOne) {
  auto platform = std::make_unique<Platform>();
  platform->folders = std::make_unique<XDGFolders>(Environment{{"HOME", "/home/a"}});
  platform->target = std::make_unique<Running>();
  const Folders* folders = platform->folders.get();
  EXPECT_EQ(Platform::install(std::move(platform)), nullptr);
  EXPECT_EQ(&platformFolders(), folders);
  EXPECT_TRUE(targetApplication().isRunning());
  EXPECT_EQ(Platform::install(nullptr)->folders.get(), folders);
}

}  // namespace
}  // namespace quorin
