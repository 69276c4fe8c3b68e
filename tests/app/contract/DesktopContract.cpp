// What the desktop does for the application: the status item, the login item, updates, folders. The
// test program is not installed and has no feed, so nothing of the user's is changed.
#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

using testing::IsEmpty;

class Chooser : public StatusItemDelegate {
 public:
  void menuWillOpen() override {}
  void menuItemChosen(std::size_t index) override { chosen.push_back(index); }
  std::vector<std::size_t> chosen;
};

class StatusItemContract : public PortContract {
 protected:
  void SetUp() override {
    if (!item) GTEST_SKIP() << "built without a status item";
  }

  Chooser chooser;
  const std::unique_ptr<StatusItem> item = platform().makeStatusItem("MenuBarIcon");
};

TEST_F(StatusItemContract, TakesNoChangeOfItsMenuForAChoice) {
  item->setDelegate(&chooser);
  item->setMenu({{"Open Auditor"}, {""}, {"Start at Login", true, false, true}});
  for (const bool checked : {true, false, true}) {
    item->setItem(2, {"Start at Login", true, checked, true});
    item->setItem(0, {checked ? "Pause Follow" : "Resume Follow", checked});
    runFor(std::chrono::milliseconds(50));
  }
  EXPECT_THAT(chooser.chosen, IsEmpty());
}

TEST_F(StatusItemContract, LeavesItemsAloneThatItDoesNotHave) {
  item->setItem(0, {"before there is a menu"});
  item->setMenu({{"One"}, {"Two"}, {"Three"}});
  item->setMenu({{"One"}});
  item->setItem(2, {"Three"});
  item->setItem(99, {"nowhere"});
  runFor(std::chrono::milliseconds(50));
}

TEST_F(StatusItemContract, GoesWithADelegateThatIsStillSet) {
  item->setDelegate(&chooser);
  item->setMenu({{"One", true, true, true}});
  platform().makeStatusItem("MenuBarIcon")->setDelegate(&chooser);
  runFor(std::chrono::milliseconds(50));
  EXPECT_THAT(chooser.chosen, IsEmpty());
}

class LoginItemContract : public PortContract {};

TEST_F(LoginItemContract, KnowsAProgramThatIsNotInstalled) {
  ASSERT_TRUE(platform().loginItem());
  EXPECT_FALSE(platform().loginItem()->isInstalled());
  EXPECT_NE(platform().loginItem()->status(), LoginItemStatus::enabled);
}

class UpdaterContract : public PortContract {};

TEST_F(UpdaterContract, SaysWhyThereAreNoUpdatesWithoutAFeed) {
  Updater* const updater = platform().updater();
  ASSERT_TRUE(updater);
  const std::optional<std::string> reason = updater->unavailable();
  ASSERT_TRUE(reason);
  EXPECT_NE(*reason, "");
  updater->checkForUpdates();
  runFor(std::chrono::milliseconds(50));
  EXPECT_EQ(updater->unavailable(), reason);
}

class FoldersContract : public PortContract {};

TEST_F(FoldersContract, AreAbsoluteAndApart) {
  Folders& all = folders();
  for (const auto& folder :
       {all.applicationSupport(), all.library(), all.desktop(), all.temporary()}) {
    EXPECT_TRUE(folder.is_absolute()) << folder;
  }
  EXPECT_NE(all.applicationSupport(), all.library());
  EXPECT_NE(all.applicationSupport(), all.temporary());
  EXPECT_EQ(all.library(), all.library());
}

TEST_F(FoldersContract, HaveATemporaryOneThatIsThere) {
  EXPECT_TRUE(std::filesystem::is_directory(folders().temporary()));
}

}  // namespace
}  // namespace quorin::contract
