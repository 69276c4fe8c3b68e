// Real key presses on a display of the test's own.
#include "app/linux/X11HotKeys.h"
#include "tests/app/linux/GtkFixture.h"
#include "tests/app/linux/OtherClient.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t keyM = 46, keyD = 2, leftArrow = 123;
constexpr std::uint32_t optionShift = 2048 + 512, controlOption = 6144, superKey = 256;

class X11HotKeysTest : public GtkFixture {
 protected:
  X11HotKeysTest() {
    keys_.install([this](HotKeyID id) {
      pressed_.push_back(id.id);
      return HotKeyService::noError;
    });
  }

  static void xdotool(const std::vector<std::string>& words) {
    EXPECT_TRUE(display->xdotool(words));
  }

  // What was pressed when the last of these keys had its effect. The last one is always added.
  std::vector<std::uint32_t> pressedAfter(const std::vector<std::string>& combinations) {
    pressed_.clear();
    for (const std::string& one : combinations) xdotool({"key", one});
    xdotool({"key", "ctrl+alt+Left"});
    EXPECT_TRUE(waitUntil([this] { return !pressed_.empty() && pressed_.back() == last; }));
    if (!pressed_.empty()) pressed_.pop_back();
    return pressed_;
  }

  static constexpr std::uint32_t last = 99;
  std::vector<std::uint32_t> pressed_;
  X11HotKeys keys_{gdk_display_get_default()};
  const HotKeyService::Status lastStatus_ = keys_.add({1, last}, leftArrow, controlOption);
};

TEST_F(X11HotKeysTest, TellsWhichCombinationWasPressed) {
  ASSERT_EQ(lastStatus_, HotKeyService::noError);
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  EXPECT_EQ(keys_.add({1, 5}, keyD, optionShift), HotKeyService::noError);
  EXPECT_EQ(keys_.add({1, 6}, keyD, superKey), HotKeyService::noError);
  EXPECT_THAT(pressedAfter({"alt+shift+d", "alt+shift+m", "super+d"}), ElementsAre(5, 4, 6));
}

TEST_F(X11HotKeysTest, LeavesOtherCombinationsAlone) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  EXPECT_THAT(pressedAfter({"m", "alt+m", "shift+m", "ctrl+alt+shift+m", "alt+shift+n"}),
              IsEmpty());
}

TEST_F(X11HotKeysTest, WorksWithAnyLockOn) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  xdotool({"key", "Caps_Lock"});
  EXPECT_THAT(pressedAfter({"alt+shift+m"}), ElementsAre(4));
  xdotool({"key", "Num_Lock"});
  EXPECT_THAT(pressedAfter({"alt+shift+m"}), ElementsAre(4));
  xdotool({"key", "Caps_Lock"});
  EXPECT_THAT(pressedAfter({"alt+shift+m"}), ElementsAre(4));
  xdotool({"key", "Num_Lock"});
  EXPECT_THAT(pressedAfter({"alt+shift+m"}), ElementsAre(4));
}

TEST_F(X11HotKeysTest, CountsAKeyThatIsHeldDownOnce) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  xdotool({"keydown", "alt", "keydown", "shift", "keydown", "m"});
  ASSERT_TRUE(waitUntil([this] { return !pressed_.empty(); }));
  runFor(std::chrono::seconds(1));  // longer than the delay before a key repeats
  xdotool({"keyup", "m", "keyup", "shift", "keyup", "alt"});
  EXPECT_THAT(pressed_, ElementsAre(4));
  EXPECT_THAT(pressedAfter({"alt+shift+m"}), ElementsAre(4));
}

TEST_F(X11HotKeysTest, CountsTheNextPressOfAKeyWhoseReleaseWasLost) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  const ListensToKeys listening(gdk_display_get_default());
  constexpr unsigned altShift = ForeignGrab::alt | ForeignGrab::shift;
  const auto countAfter = [&](std::uint32_t time) {
    sendPress("m", altShift, time);
    runFor(std::chrono::milliseconds(100));
    return pressed_.size();
  };
  EXPECT_EQ(countAfter(100'000), 1u);
  EXPECT_EQ(countAfter(100'660), 1u);  // held down: the first repeated press
  EXPECT_EQ(countAfter(100'700), 1u);  // the next
  EXPECT_EQ(countAfter(110'000), 2u);  // held down it would have come long before
  EXPECT_EQ(countAfter(110'660), 2u);
  EXPECT_EQ(countAfter(0xFFFF'FFF0), 3u);
  EXPECT_EQ(countAfter(0x0000'0100), 3u);  // the display's time began anew
}

TEST_F(X11HotKeysTest, RefusesWhatIsTakenOrNoKey) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  EXPECT_EQ(keys_.add({1, 5}, keyM, optionShift), X11HotKeys::alreadyExists);
  EXPECT_EQ(keys_.add({1, 5}, 127, optionShift), X11HotKeys::badParameter);
  EXPECT_EQ(keys_.add({1, 5}, keyD, 1024), X11HotKeys::badParameter);
  EXPECT_EQ(keys_.install([](HotKeyID) { return HotKeyService::noError; }),
            X11HotKeys::alreadyInstalled);
  EXPECT_THAT(pressedAfter({"alt+shift+m", "alt+shift+d"}), ElementsAre(4));
}

// Another program may hold a combination with one of the locks only.
TEST_F(X11HotKeysTest, LeavesAllOfACombinationThatAnotherProgramHolds) {
  auto other = std::make_unique<ForeignGrab>(
      "d", ForeignGrab::shift | ForeignGrab::alt | ForeignGrab::capsLock);
  EXPECT_EQ(keys_.add({1, 5}, keyD, optionShift), X11HotKeys::alreadyExists);
  EXPECT_THAT(pressedAfter({"alt+shift+d"}), IsEmpty());
  other.reset();
  {
    GdkDisplay* const second = gdk_display_open(display->name().c_str());
    EXPECT_EQ(X11HotKeys(second).add({1, 5}, keyD, optionShift), HotKeyService::noError)
        << "the refused attempt left nothing held";
    gdk_display_close(second);
  }
  EXPECT_EQ(keys_.add({1, 5}, keyD, optionShift), HotKeyService::noError);
  EXPECT_THAT(pressedAfter({"alt+shift+d"}), ElementsAre(5));
}

TEST_F(X11HotKeysTest, LetsItsCombinationsGo) {
  const auto add = [](X11HotKeys& keys) { return keys.add({1, 4}, keyM, optionShift); };
  {
    X11HotKeys others(gdk_display_get_default());
    EXPECT_EQ(add(others), HotKeyService::noError);
  }
  EXPECT_EQ(add(keys_), HotKeyService::noError);
  EXPECT_THAT(pressedAfter({"alt+shift+m"}), ElementsAre(4));
}

TEST_F(X11HotKeysTest, LetsOneOfItsCombinationsGo) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  EXPECT_EQ(keys_.add({1, 5}, keyD, optionShift), HotKeyService::noError);
  keys_.remove({1, 4});
  EXPECT_THAT(pressedAfter({"alt+shift+m", "alt+shift+d"}), ElementsAre(5));
  GdkDisplay* const second = gdk_display_open(display->name().c_str());
  {
    X11HotKeys others(second);
    EXPECT_EQ(others.add({1, 6}, keyM, optionShift), HotKeyService::noError);
    EXPECT_EQ(others.add({1, 7}, keyD, optionShift), X11HotKeys::alreadyExists);
  }
  gdk_display_close(second);
}

TEST_F(X11HotKeysTest, FollowsAKeyboardThatChanges) {
  EXPECT_EQ(keys_.add({1, 4}, keyM, optionShift), HotKeyService::noError);
  // The change is told in time: pressed until it is known.
  const auto works = [this] {
    pressed_.clear();
    return waitUntil([this] {
      xdotool({"key", "alt+shift+m"});
      return !pressed_.empty();
    });
  };
  moveNumLock(2, 3);
  xdotool({"key", "Num_Lock"});
  EXPECT_TRUE(works());
  xdotool({"key", "Num_Lock"});
  moveNumLock(3, 2);
  xdotool({"key", "Num_Lock"});
  EXPECT_TRUE(works());
  xdotool({"key", "Num_Lock"});
  EXPECT_TRUE(works());
}

}  // namespace
}  // namespace quorin
