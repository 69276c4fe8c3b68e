#include "app/linux/GtkStatusItem.h"
#include "tests/app/linux/Bar.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/app/linux/OtherClient.h"
#include "tests/fakes/app/RecordedChoices.h"

namespace quorin {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class GtkStatusItemTest : public GtkFixture {
 protected:
  GtkStatusItemTest() { item_.setDelegate(&user_); }

  // The menu over the bus once it has so many items.
  std::vector<Shown> layoutOf(std::size_t count) {
    std::vector<Shown> found;
    waitUntil([&] { return (found = bar_.layout()).size() == count; });
    return found;
  }

  // Opens the menu; whether its user was told of that before the answer came.
  bool opensAndTells() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    const int before = user_.opened;
    bar_.open();
    return user_.opened > before;
  }

  Bar bar_{false};
  RecordedChoices user_;
  GtkStatusItem item_{"quorin-symbolic", "/some/folder"};
};

}  // namespace

TEST_F(GtkStatusItemTest, ShowsItsMenuOverTheBus) {
  const std::vector<MenuItem> items{
      {"Open"}, {"Off", false}, {""}, {"Mark", true, true, true}, {"No mark", true, false, true}};
  item_.setMenu(items);
  const std::vector<Shown> shown = layoutOf(5);
  ASSERT_EQ(shown.size(), items.size());
  for (std::size_t i = 0; i < items.size(); ++i) EXPECT_EQ(shown[i], items[i]) << i;
}

TEST_F(GtkStatusItemTest, ShowsAnotherMenuInItsPlace) {
  item_.setMenu({{"One"}, {"Two"}});
  layoutOf(2);
  item_.setMenu({{"Three"}});
  const std::vector<Shown> shown = layoutOf(1);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].label, "Three");
  bar_.click(shown[0].id);
  EXPECT_TRUE(waitUntil([&] { return !user_.chosen.empty(); }));
  EXPECT_TRUE(opensAndTells());
}

TEST_F(GtkStatusItemTest, ChangesAnItemInItsPlace) {
  item_.setMenu({{"Pause"}, {"Start", true, false, true}});
  const std::vector<Shown> before = layoutOf(2);
  const MenuItem resumed{"Resume"};
  const MenuItem started{"Start (not here)", false, true, true};
  item_.setItem(0, resumed);
  item_.setItem(1, started);
  item_.setItem(2, {"there is none"});
  const std::vector<Shown> after = layoutOf(2);
  ASSERT_EQ(after.size(), 2U);
  EXPECT_EQ(after[0], resumed);
  EXPECT_EQ(after[1], started);
  EXPECT_EQ(after[0].id, before[0].id);
  EXPECT_THAT(user_.chosen, IsEmpty()) << "to mark an item is not to choose it";
}

TEST_F(GtkStatusItemTest, TellsWhichItemWasChosen) {
  item_.setMenu({{"One"}, {""}, {"Three"}});
  const std::vector<Shown> shown = layoutOf(3);
  ASSERT_EQ(shown.size(), 3U);
  bar_.click(shown[2].id);
  bar_.click(shown[0].id);
  ASSERT_TRUE(waitUntil([&] { return user_.chosen.size() == 2; }));
  EXPECT_THAT(user_.chosen, ElementsAre(2, 0));
  item_.setDelegate(nullptr);
  bar_.click(shown[0].id);
  bar_.open();
  EXPECT_EQ(user_.chosen.size(), 2U);
}

TEST_F(GtkStatusItemTest, LeavesTheMarkToItsOwner) {
  item_.setMenu({{"Start", true, false, true}});
  const std::vector<Shown> shown = layoutOf(1);
  ASSERT_EQ(shown.size(), 1U);
  bar_.click(shown[0].id);
  ASSERT_TRUE(waitUntil([&] { return !user_.chosen.empty(); }));
  EXPECT_FALSE(bar_.layout().at(0).checked);
  EXPECT_THAT(user_.chosen, ElementsAre(0));
}

TEST_F(GtkStatusItemTest, LetsItsOwnerChangeTheMenuWhenItOpens) {
  item_.setMenu({{"Start", true, false, true}});
  layoutOf(1);
  user_.onOpening = [&] { item_.setItem(0, {"Start", true, true, true}); };
  EXPECT_TRUE(opensAndTells());
  EXPECT_TRUE(bar_.layout().at(0).checked);
  const int opened = user_.opened;
  gtk_menu_popup_at_rect(item_.menu(), gdk_screen_get_root_window(gdk_screen_get_default()),
                         std::make_unique<GdkRectangle>().get(), GDK_GRAVITY_NORTH_WEST,
                         GDK_GRAVITY_NORTH_WEST, nullptr);
  EXPECT_GT(user_.opened, opened) << "the tray's menu";
  gtk_menu_popdown(item_.menu());
}

TEST_F(GtkStatusItemTest, RegistersWithTheBarAndSaysWhatItIs) {
  Bar desktop(true);
  ASSERT_TRUE(waitUntil([&] { return !desktop.registered().empty(); }));
  EXPECT_THAT(desktop.registered(), testing::Contains(Bar::item));
  EXPECT_EQ(bar_.property("Id"), "quorin");
  EXPECT_EQ(bar_.property("Title"), "Quorin");
  EXPECT_EQ(bar_.property("Status"), "Active");
  EXPECT_EQ(bar_.property("IconName"), "quorin-symbolic");
  EXPECT_EQ(bar_.property("IconThemePath"), "/some/folder");
}

TEST_F(GtkStatusItemTest, StandsInTheTrayWhereNoBarTakesIt) {
  Tray tray;
  EXPECT_TRUE(waitUntil([&] { return !tray.icons().empty(); }));
}

TEST_F(GtkFixture, TakesTheMenuOfAStatusItemFromTheBus) {
  Bar bar(false);
  {
    GtkStatusItem item("quorin-symbolic", {});
    item.setMenu({{"One"}});
    EXPECT_TRUE(waitUntil([&] { return bar.layout().size() == 1; }));
  }
  EXPECT_THAT(bar.layout(), IsEmpty());
}

}  // namespace quorin
