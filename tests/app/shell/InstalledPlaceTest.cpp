#include <gtest/gtest.h>

#include "app/shell/InstalledPlace.h"

namespace quorin {
namespace {

TEST(InstalledPlace, IsInTheFoldersOfApplications) {
  for (const char* bundle : {"/Applications/Quorin.app", "/Applications/Audit/Quorin.app",
                             "/Users/ann/Applications/Quorin.app"}) {
    EXPECT_TRUE(isInstalledApplication(bundle, "/Users/ann")) << bundle;
  }
}

TEST(InstalledPlace, IsNowhereElse) {
  for (const char* bundle :
       {"/Users/ann/Downloads/Quorin.app", "/Volumes/Quorin/Quorin.app", "/Applications",
        "/Applications (old)/Quorin.app", "/Users/bob/Applications/Quorin.app",
        "/Users/ann/src/build/Quorin.app", "/Applications/../tmp/Quorin.app", "",
        "/private/var/folders/x/AppTranslocation/Y/d/Quorin.app"}) {
    EXPECT_FALSE(isInstalledApplication(bundle, "/Users/ann")) << bundle;
  }
}

TEST(InstalledPlace, DoesWithoutAHome) {
  EXPECT_FALSE(isInstalledApplication("Applications/Quorin.app", ""));
}

}  // namespace
}  // namespace quorin
