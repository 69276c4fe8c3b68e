#include <gtest/gtest.h>

#include "app/shell/ScreenPlacement.h"

namespace quorin {
namespace {

using namespace ScreenPlacement;

const Screen main{{0, 0, 1440, 900}, {0, 0, 1440, 870}};  // a panel of 30 at the top
const Screen right{{1440, -300, 1920, 1200}, {1440, -300, 1920, 1200}};

TEST(ScreenPlacement, FindsTheScreenThatHoldsMost) {
  EXPECT_EQ(screenOf({1300, 0, 460, 500}, {main, right}), right);
  EXPECT_EQ(screenOf({1100, 0, 460, 500}, {main, right}), main);
  EXPECT_EQ(screenOf({-500, 0, 460, 500}, {main, right}), std::nullopt);
  EXPECT_EQ(screenOf({0, 0, 460, 500}, {}), std::nullopt);
}

TEST(ScreenPlacement, LeavesAFrameInReachAlone) {
  for (const ScreenFrame& frame :
       {ScreenFrame{0, 0, 460, 588}, ScreenFrame{980, 282, 460, 588},
        ScreenFrame{-300, 100, 460, 588}, ScreenFrame{1380, -200, 460, 588}}) {
    EXPECT_EQ(constrained(frame, {main, right}), frame);
  }
}

TEST(ScreenPlacement, BringsATitleBarUnderTheDesktopsPanel) {
  EXPECT_EQ(constrained({100, 500, 460, 588}, {main}), (ScreenFrame{100, 282, 460, 588}));
}

TEST(ScreenPlacement, LowersAPanelThatIsHigherThanTheScreen) {
  const Screen small{{0, 0, 640, 480}, {0, 20, 640, 440}};
  EXPECT_EQ(constrained({100, 20, 460, 588}, {small}), (ScreenFrame{100, 20, 460, 440}));
}

TEST(ScreenPlacement, BringsAFrameOffAllScreensToTheFirst) {
  EXPECT_EQ(constrained({5000, 100, 460, 588}, {main}), (ScreenFrame{980, 100, 460, 588}));
  EXPECT_EQ(constrained({-900, 100, 460, 588}, {main}), (ScreenFrame{0, 100, 460, 588}));
  EXPECT_EQ(constrained({100, 3000, 460, 588}, {main}), (ScreenFrame{100, 282, 460, 588}));
  EXPECT_EQ(constrained({100, -3000, 460, 588}, {main}), (ScreenFrame{100, -540, 460, 588}))
      << "its title bar at the lower edge";
}

TEST(ScreenPlacement, KeepsAPieceInReachAtEitherSide) {
  EXPECT_EQ(constrained({1420, 100, 460, 588}, {main}).x, 980);
  EXPECT_EQ(constrained({-440, 100, 460, 588}, {main}).x, 0);
}

TEST(ScreenPlacement, LeavesAPanelWithoutScreensWhereItIs) {
  EXPECT_EQ(constrained({5000, 5000, 460, 588}, {}), (ScreenFrame{5000, 5000, 460, 588}));
}

}  // namespace
}  // namespace quorin
