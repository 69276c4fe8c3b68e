#include <gmock/gmock.h>

#include "app/linux/DesktopGeometry.h"

namespace quorin {
namespace {

using namespace DesktopGeometry;

const Screen main{{0, 0, 1440, 900}, {0, 0, 1440, 870}};  // a panel of 30 at the top
const Screen right{{1440, -300, 1920, 1200}, {1440, -300, 1920, 1200}};

TEST(DesktopGeometry, TurnsTheDesktopUpsideDown) {
  EXPECT_EQ(toPoints({100, 30, 460, 588}, 900), (ScreenFrame{100, 282, 460, 588}));
  EXPECT_EQ(toDesktop({100, 282, 460, 588}, 900), (DesktopRect{100, 30, 460, 588}));
}

TEST(DesktopGeometry, GivesNegativePlacesToScreensBelowTheFirst) {
  EXPECT_EQ(toPoints({1440, 0, 1920, 1200}, 900), (ScreenFrame{1440, -300, 1920, 1200}));
}

TEST(DesktopGeometry, RoundsToWholePixels) {
  EXPECT_EQ(toDesktop({0.4, 99.6, 460.5, 500.2}, 900), (DesktopRect{0, 300, 461, 500}));
}

TEST(DesktopGeometry, WritesASavedFrameAsEightNumbers) {
  EXPECT_EQ(savedFrameText({900, 252, 460, 588}, main.frame), "900 252 460 588 0 0 1440 900 ");
  EXPECT_EQ(savedFrameText({-12, -300, 460, 588}, right.frame),
            "-12 -300 460 588 1440 -300 1920 1200 ");
}

TEST(DesktopGeometry, ReadsASavedFrame) {
  EXPECT_EQ(savedFrame("900 252 460 588 0 0 1440 900 "), (ScreenFrame{900, 252, 460, 588}));
  EXPECT_EQ(savedFrame("-5 -6 460 588"), (ScreenFrame{-5, -6, 460, 588}));
}

TEST(DesktopGeometry, ReadsNoFrameFromOtherText) {
  for (const char* text : {"", "a b c d", "900 252 460", "900 252 0 588", "900 252 460 -588",
                           "nan 1 460 588", "1e300 1 460 588", "inf 0 1 1"}) {
    EXPECT_EQ(savedFrame(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quorin
