// What the user does with the menu of the icon in the bar.
#include "tests/app/hands/Hands.h"
#include "tests/fakes/app/RecordedChoices.h"

namespace quorin::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StatusItemChoicesContract : public PortContract {
 protected:
  StatusItemChoicesContract() { item->setDelegate(&owner); }

  bool chosen(const std::vector<std::size_t>& all) {
    waitUntil([&] { return owner.chosen.size() >= all.size(); });
    return owner.chosen == all;
  }

  RecordedChoices owner;
  std::unique_ptr<StatusItem> item = platform().makeStatusItem("MenuBarIcon");
};

TEST_F(StatusItemChoicesContract, TellsWhichItemTheUserChose) {
  item->setMenu({{"One"}, {""}, {"Three"}, {"Four", false}});
  EXPECT_TRUE(chooseFromMenu("Three"));
  EXPECT_TRUE(chosen({2}));
  EXPECT_GE(owner.opened, 1);
  EXPECT_TRUE(chooseFromMenu("One"));
  EXPECT_TRUE(chosen({2, 0}));
  EXPECT_FALSE(chooseFromMenu("Four")) << "it is disabled";
  EXPECT_FALSE(chooseFromMenu("Five")) << "there is none";
  EXPECT_TRUE(chosen({2, 0}));
}

TEST_F(StatusItemChoicesContract, ShowsAnotherMenuInItsPlace) {
  item->setMenu({{"One"}, {"Two"}});
  EXPECT_TRUE(chooseFromMenu("Two"));
  EXPECT_TRUE(chosen({1}));
  item->setMenu({{"Two"}});
  EXPECT_FALSE(chooseFromMenu("One"));
  EXPECT_TRUE(chooseFromMenu("Two"));
  EXPECT_TRUE(chosen({1, 0}));
}

TEST_F(StatusItemChoicesContract, ChangesAnItemInItsPlace) {
  item->setMenu({{"One"}, {"Two", false}});
  item->setItem(1, {"Second"});
  EXPECT_FALSE(chooseFromMenu("Two"));
  EXPECT_TRUE(chooseFromMenu("Second"));
  EXPECT_TRUE(chosen({1}));
}

// The last moment to change them.
TEST_F(StatusItemChoicesContract, TellsItsOwnerBeforeItOpens) {
  item->setMenu({{"One", false}});
  owner.onOpening = [&] { item->setItem(0, {"One"}); };
  EXPECT_TRUE(chooseFromMenu("One"));
  EXPECT_TRUE(chosen({0}));
}

TEST_F(StatusItemChoicesContract, TellsNobodyWhereNobodyListens) {
  item->setMenu({{"One"}});
  EXPECT_TRUE(chooseFromMenu("One"));
  EXPECT_TRUE(chosen({0}));
  const int opened = owner.opened;
  item->setDelegate(nullptr);
  chooseFromMenu("One");
  runFor(std::chrono::milliseconds(50));
  EXPECT_TRUE(chosen({0}));
  EXPECT_EQ(owner.opened, opened);
}

TEST_F(StatusItemChoicesContract, GoesFromTheBarWithItsOwner) {
  item->setMenu({{"One"}});
  EXPECT_TRUE(chooseFromMenu("One"));
  EXPECT_TRUE(chosen({0}));
  item.reset();
  EXPECT_FALSE(chooseFromMenu("One"));
  EXPECT_TRUE(chosen({0}));
}

}  // namespace
}  // namespace quorin::contract
