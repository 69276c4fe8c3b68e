// Real keys and buttons on a display of the test's own.
#include "app/linux/X11UserInput.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/app/linux/OtherClient.h"

namespace quorin {
namespace {

class X11UserInputTest : public GtkFixture {
 protected:
  X11UserInputTest() {
    input_.observe([this] { ++heard_; });
  }

  bool hears(const std::vector<std::string>& words) {
    settle();
    EXPECT_TRUE(display->xdotool(words));
    return waitUntil([this] { return heard_ > 0; });
  }
  bool ignores(const std::vector<std::string>& words) {
    settle();
    EXPECT_TRUE(display->xdotool(words));
    runFor(patience);
    return heard_ == 0;
  }

  // What was done before has been heard of.
  void settle() {
    runFor(patience);
    heard_ = 0;
  }

  static constexpr std::chrono::milliseconds patience{100};
  int heard_ = 0;
  X11UserInput input_{gdk_display_get_default()};
};

TEST_F(X11UserInputTest, TellsOfKeysAndButtonsWhereverTheyGo) {
  EXPECT_TRUE(hears({"key", "Down"}));
  EXPECT_TRUE(hears({"click", "1"}));
  EXPECT_TRUE(hears({"click", "3"}));
}

// A drag ends with a release, and so does a key that was held down.
TEST_F(X11UserInputTest, TellsOfReleases) {
  ASSERT_TRUE(hears({"mousedown", "1"}));
  EXPECT_TRUE(hears({"mouseup", "1"}));
  ASSERT_TRUE(hears({"keydown", "Down"}));
  EXPECT_TRUE(hears({"keyup", "Down"}));
}

TEST_F(X11UserInputTest, TellsNothingOfTheWheelNorOfThePointersMoves) {
  EXPECT_TRUE(ignores({"click", "4"}));
  EXPECT_TRUE(ignores({"click", "5"}));
  EXPECT_TRUE(ignores({"mousemove_relative", "30", "40"}));
  EXPECT_TRUE(hears({"key", "F9"}));
}

// A menu that is open holds the keyboard and the pointer.
TEST_F(X11UserInputTest, TellsOfKeysThatAnotherProgramHolds) {
  const ForeignGrab grab("d", ForeignGrab::shift | ForeignGrab::alt);
  EXPECT_TRUE(hears({"key", "alt+shift+d"}));
}

}  // namespace
}  // namespace quorin
