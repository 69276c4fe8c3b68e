#include <gmock/gmock.h>

#include "kit/shapes/PanelPlacement.h"

namespace quorin::BridgeShapes {
namespace {

// A 1440 x 900 screen with a menu bar of 25 and a dock of 70 points.
constexpr double screenHeight = 900;
constexpr ScreenFrame visible{0, 70, 1440, 805};
constexpr ScreenSize size{460, 588};

TEST(PanelPlacement, PutsThePanelOnExcelsRightEdgeLevelWithItsTop) {
  const ScreenFrame frame = panelFrameBesideExcel({40, 60, 900, 800}, screenHeight, visible, size);
  EXPECT_EQ(frame, (ScreenFrame{900, 252, 460, 588}));
}

TEST(PanelPlacement, PushesThePanelLeftUntilItsRightEdgeMeetsTheVisibleOne) {
  const ScreenFrame frame = panelFrameBesideExcel({40, 60, 1400, 800}, screenHeight, visible, size);
  EXPECT_EQ(frame, (ScreenFrame{980, 252, 460, 588}));
}

TEST(PanelPlacement, LeavesAPanelThatJustFits) {
  const ScreenFrame frame = panelFrameBesideExcel({40, 60, 980, 800}, screenHeight, visible, size);
  EXPECT_EQ(frame.x, 980);
}

TEST(PanelPlacement, PutsAPanelWiderThanTheVisibleFrameOnItsLeftEdge) {
  const ScreenFrame narrow{100, 70, 400, 805};
  const ScreenFrame frame = panelFrameBesideExcel({100, 60, 480, 800}, screenHeight, narrow, size);
  EXPECT_EQ(frame, (ScreenFrame{100, 252, 460, 588}));
}

TEST(PanelPlacement, BringsAPanelLeftOfTheVisibleFrameToItsLeftEdge) {
  const ScreenFrame frame =
      panelFrameBesideExcel({-900, 60, -700, 800}, screenHeight, visible, size);
  EXPECT_EQ(frame.x, 0);
}

TEST(PanelPlacement, ClampsTheTopUnderTheMenuBar) {
  const ScreenFrame frame = panelFrameBesideExcel({40, 0, 900, 800}, screenHeight, visible, size);
  EXPECT_EQ(frame, (ScreenFrame{900, 287, 460, 588}));
}

TEST(PanelPlacement, LiftsThePanelAboveTheDock) {
  const ScreenFrame frame = panelFrameBesideExcel({40, 400, 900, 890}, screenHeight, visible, size);
  EXPECT_EQ(frame.y, 70);
}

TEST(PanelPlacement, PutsAPanelTallerThanTheVisibleFrameOnItsBottomEdge) {
  const ScreenFrame frame =
      panelFrameBesideExcel({40, 60, 900, 800}, screenHeight, visible, {460, 1000});
  EXPECT_EQ(frame, (ScreenFrame{900, 70, 460, 1000}));
}

TEST(PanelPlacement, ReadsTheWindowOfAProbe) {
  const JSONValue probe(JSONValue::Object{
      {"state", "ok"},
      {"excelWindow", JSONValue::Object{{"x1", 40}, {"y1", 60.5}, {"x2", 900}, {"y2", 800}}}});
  EXPECT_EQ(windowBounds(probe), (WindowBounds{40, 60.5, 900, 800}));
}

TEST(PanelPlacement, FindsNoWindowInAProbeWithoutFourNumbers) {
  using Object = JSONValue::Object;
  EXPECT_EQ(windowBounds(nullptr), std::nullopt);
  EXPECT_EQ(windowBounds(Object{{"state", "notRunning"}}), std::nullopt);
  EXPECT_EQ(windowBounds(Object{{"excelWindow", "x"}}), std::nullopt);
  EXPECT_EQ(windowBounds(Object{{"excelWindow", Object{{"x1", 1}, {"y1", 2}, {"x2", 3}}}}),
            std::nullopt);
  EXPECT_EQ(
      windowBounds(Object{{"excelWindow", Object{{"x1", 1}, {"y1", 2}, {"x2", 3}, {"y2", "4"}}}}),
      std::nullopt);
}

struct CompanionCase {
  bool frontIsExcel, frontIsSelf, enabled, panelVisible;
  CompanionAction expected;
};

TEST(CompanionAction, FollowsAllSixteenCombinations) {
  using enum CompanionAction;
  const CompanionCase cases[] = {
      // another application
      {false, false, false, false, ignore},
      {false, false, false, true, hide},
      {false, false, true, false, ignore},
      {false, false, true, true, hide},
      // Excel
      {true, false, false, false, ignore},
      {true, false, false, true, ignore},
      {true, false, true, false, show},
      {true, false, true, true, ignore},
      // this application, whatever else holds
      {false, true, false, false, ignore},
      {false, true, false, true, ignore},
      {false, true, true, false, ignore},
      {false, true, true, true, ignore},
      {true, true, false, false, ignore},
      {true, true, false, true, ignore},
      {true, true, true, false, ignore},
      {true, true, true, true, ignore},
  };
  for (const CompanionCase& c : cases) {
    EXPECT_EQ(companionAction(c.frontIsExcel, c.frontIsSelf, c.enabled, c.panelVisible), c.expected)
        << c.frontIsExcel << c.frontIsSelf << c.enabled << c.panelVisible;
  }
}

TEST(CompanionAction, HasThreeNamedCasesInOrder) {
  EXPECT_EQ(static_cast<int>(CompanionAction::show), 0);
  EXPECT_EQ(static_cast<int>(CompanionAction::hide), 1);
  EXPECT_EQ(static_cast<int>(CompanionAction::ignore), 2);
  EXPECT_EQ(name(CompanionAction::show), "show");
  EXPECT_EQ(name(CompanionAction::hide), "hide");
  EXPECT_EQ(name(CompanionAction::ignore), "ignore");
}

}  // namespace
}  // namespace quorin::BridgeShapes
