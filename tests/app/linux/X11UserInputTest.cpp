// Real keys and buttons on a display of the test's own.
#include "app/linux/X11UserInput.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/app/linux/OtherClient.h"

namespace quorin {
namespace {

using ui::ChildProcess;

class X11UserInputTest : public GtkFixture {
 protected:
  X11UserInputTest() {
    input_.observe([this] { ++heard_; });
  }

  static void xdotool(std::vector<std::string> words) {
    words.insert(words.begin(), "xdotool");
    ChildProcess::run(words);
  }

  // Whether this is heard of. Whatever is done, a key that is pressed afterwards is.
  bool hears(const std::vector<std::string>& words) {
    heard_ = 0;
    xdotool(words);
    runFor(std::chrono::milliseconds(100));
    const bool heard = heard_ > 0;
    heard_ = 0;
    xdotool({"key", "F9"});
    EXPECT_TRUE(waitUntil([this] { return heard_ > 0; }));
    return heard;
  }

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
  EXPECT_FALSE(hears({"click", "4"}));
  EXPECT_FALSE(hears({"click", "5"}));
  EXPECT_FALSE(hears({"mousemove_relative", "30", "40"}));
}

// A menu that is open holds the keyboard and the pointer.
TEST_F(X11UserInputTest, TellsOfKeysThatAnotherProgramHolds) {
  const ForeignGrab grab("d", ForeignGrab::shift | ForeignGrab::alt);
  EXPECT_TRUE(hears({"key", "alt+shift+d"}));
}

}  // namespace
}  // namespace quorin
