#include <optional>

#include "kit/shapes/ShapeError.h"
#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;

class SelectionVerbs : public BridgeFixture {
 protected:
  // Calls the verb and gives the message of what it throws.
  template <typename Action>
  static std::string messageOf(Action action) {
    try {
      action();
    } catch (const std::exception& thrown) {
      return thrown.what();
    }
    return "(no error)";
  }

  void hearOfCells() {
    bridge_.setOnActivatedCell([this](const BridgeShapes::CellPlace& cell) {
      heard_.push_back(cell.book + "|" + cell.sheet + "|" + cell.address);
    });
  }

  std::vector<std::string> heard_;
};

TEST_F(SelectionVerbs, SelectCountsTheAreasAndStampsTheTime) {
  excel_.returns("qx_select", "$A$1,'a,b'!$C$3");
  EXPECT_EQ(bridge_.lastProgrammaticNav(), Bridge::distantPast);
  EXPECT_EQ(bridge_.select({"A1", "'a,b'!C3"}), JSONValue(Object{{"areas", 2}}));
  EXPECT_EQ(bridge_.lastProgrammaticNav(), now_);
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10)));
}

TEST_F(SelectionVerbs, SelectThatFailsStampsNothing) {
  excel_.returns("qx_select", nullptr);
  EXPECT_EQ(messageOf([&] { bridge_.select({"A1"}); }), "select returned no address");
  EXPECT_EQ(bridge_.lastProgrammaticNav(), Bridge::distantPast);
}

TEST_F(SelectionVerbs, ActivateStampsTheTimeBeforeAndAfter) {
  const Bridge::Date before = now_;
  std::optional<Bridge::Date> during;
  excel_.answer("qx_activate", [&](const AppleEvent&) {
    during = bridge_.lastProgrammaticNav();
    now_ += seconds(2);
    return ScriptReply{AppleEventDescriptor::boolean(true), std::nullopt};
  });
  excel_.returns("qx_pollcell", Array{"Book1", "Sheet1", "$C$3"});
  EXPECT_EQ(bridge_.activate("C3"), JSONValue(true));
  EXPECT_EQ(during, before);
  EXPECT_EQ(bridge_.lastProgrammaticNav(), before + seconds(2));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10), seconds(3)));
}

TEST_F(SelectionVerbs, ActivateTellsWhereItLanded) {
  hearOfCells();
  excel_.returns("qx_activate", true);
  excel_.returns("qx_pollcell", Array{"Book1", "Sheet1", "$C$3"});
  bridge_.activate(std::nullopt);
  EXPECT_THAT(heard_, ElementsAre("Book1|Sheet1|$C$3"));
}

TEST_F(SelectionVerbs, ActivateDoesNotMindNotKnowingWhereItLanded) {
  hearOfCells();
  excel_.returns("qx_activate", true);
  excel_.fails("qx_pollcell", -50, "no");
  EXPECT_EQ(bridge_.dispatch("activate", {"C3"}), (Bridge::Reply{true, true}));
  EXPECT_THAT(heard_, testing::IsEmpty());
  EXPECT_THAT(log_.lines(), testing::IsEmpty());
}

TEST_F(SelectionVerbs, ActivateThatFailsKeepsTheFirstStamp) {
  excel_.fails("qx_activate", -1728, "no such range");
  EXPECT_EQ(messageOf([&] { bridge_.activate("Nope"); }), "no such range");
  EXPECT_EQ(bridge_.lastProgrammaticNav(), now_);
  EXPECT_EQ(excel_.calls().size(), 1u);
}

TEST_F(SelectionVerbs, DependentsPassesTheAddressTextOn) {
  excel_.returns("qx_dependents", "$B$1,$D$4");
  EXPECT_EQ(bridge_.dependents("A1"), JSONValue("$B$1,$D$4"));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(10)));
}

TEST_F(SelectionVerbs, DependentsOfACellWithoutAnyIsTheEmptyText) {
  excel_.returns("qx_dependents", "");
  EXPECT_EQ(bridge_.dispatch("dependents", {"A1"}), (Bridge::Reply{true, ""}));
}

TEST_F(SelectionVerbs, DependentsIsNeverMadeUp) {
  excel_.returns("qx_dependents", nullptr);
  EXPECT_EQ(messageOf([&] { bridge_.dependents("My Sheet!A1"); }),
            "dependents returned no address for 'My Sheet!A1'");
}

TEST_F(SelectionVerbs, PublishLandedWantsThreeTexts) {
  bridge_.publishLanded(Object{{"book", "b"}, {"sheet", "s"}, {"addr", "a"}});  // nobody hears
  hearOfCells();
  bridge_.publishLanded(Object{{"book", "b"}, {"sheet", "s"}, {"addr", "a"}});
  bridge_.publishLanded(Object{{"book", "b"}, {"sheet", "s"}});
  bridge_.publishLanded(Object{{"book", "b"}, {"sheet", 1}, {"addr", "a"}});
  bridge_.publishLanded(Array{"b", "s", "a"});
  bridge_.publishLanded(nullptr);
  EXPECT_THAT(heard_, ElementsAre("b|s|a"));
}

TEST(Bridge, PutsTheDistantPastWhereDifferencesCanBeComputed) {
  const auto now = std::chrono::system_clock::now();
  EXPECT_GT(now - Bridge::distantPast, std::chrono::hours(24 * 365 * 100));
}

}  // namespace
}  // namespace quorin
