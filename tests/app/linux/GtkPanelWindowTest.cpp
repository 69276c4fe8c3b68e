#include "app/linux/GtkPanelWindow.h"
#include "tests/app/linux/GtkFixture.h"

// Last: its macros are names elsewhere.
#include <X11/Xutil.h>
#include <gdk/gdkx.h>

namespace quorin {
namespace {

using namespace std::chrono_literals;
using ui::ChildProcess;

const PanelWindowOptions windowOptions{"Quorin", {0, 0, 460, 560}, {320, 320}, "TestPanel"};
constexpr const char* frameKey = "NSWindow Frame TestPanel";

class MemoryDefaults : public Defaults {
 public:
  std::optional<std::string> string(const std::string& key) const override {
    const auto found = texts.find(key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  }
  void setString(const std::string& key, const std::string& value) override { texts[key] = value; }
  std::map<std::string, std::string> texts;
};

// Another application's window that has the keyboard.
class OtherWindow {
 public:
  OtherWindow() : window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)) {
    gtk_window_set_default_size(GTK_WINDOW(window_), 500, 400);
    gtk_widget_show(window_);
    gtk_window_present(GTK_WINDOW(window_));
  }
  ~OtherWindow() { gtk_widget_destroy(window_); }
  void fillScreen() const { gtk_window_fullscreen(GTK_WINDOW(window_)); }
  bool isActive() const { return gtk_window_is_active(GTK_WINDOW(window_)); }
  X11Session::WindowId id() const { return X11Session::idOf(gtk_widget_get_window(window_)); }

 private:
  GtkWidget* window_;
};

class GtkPanelWindowTest : public GtkFixture {
 protected:
  GtkPanelWindowTest() : session(gdk_display_get_default()) {}

  std::unique_ptr<GtkPanelWindow> makeWindow() {
    auto window = std::make_unique<GtkPanelWindow>(windowOptions, session, defaults);
    window->setContent(view);
    return window;
  }

  // What the X server says, in desktop pixels: the frame without the decoration.
  static X11Session::WindowId idOf(const char* title) {
    return std::stoul(ChildProcess::run({"xdotool", "search", "--name", title}));
  }
  // Until the window manager has answered.
  static void settle() { runFor(600ms); }

  MemoryDefaults defaults;
  X11Session session;
  WebKitView view{{"qx", ""}, false};
};

TEST_F(GtkPanelWindowTest, StartsHiddenAtTheBottomLeftWithItsDecorationAroundTheContent) {
  const auto window = makeWindow();
  EXPECT_FALSE(window->isVisible());
  ASSERT_TRUE(waitUntil([&] { return window->frame().height > 560; }));
  EXPECT_EQ(window->frame().x, 0);
  EXPECT_EQ(window->frame().y, 0);
  EXPECT_GE(window->frame().width, 460);
  EXPECT_EQ(window->minimumContentSize(), (ScreenSize{320, 320}));
}

TEST_F(GtkPanelWindowTest, IsAPanelOnEveryWorkspaceAndInNoTaskBar) {
  const auto window = makeWindow();
  window->orderFront();
  const std::string panel = std::to_string(idOf("^Quorin$"));
  const auto says = [&](const char* property, const std::string& value) {
    return waitUntil([&] {
      return ChildProcess::run({"xprop", "-id", panel, property}).find(value) != std::string::npos;
    });
  };
  for (const char* state : {"SKIP_TASKBAR", "SKIP_PAGER", "ABOVE"}) {
    EXPECT_TRUE(says("_NET_WM_STATE", std::string("_NET_WM_STATE_") + state)) << state;
  }
  EXPECT_TRUE(says("_NET_WM_DESKTOP", "= 4294967295\n")) << "all of them";
  EXPECT_TRUE(says("_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_UTILITY"));
}

TEST_F(GtkPanelWindowTest, ShowsWithoutTakingTheKeyboard) {
  const OtherWindow other;
  ASSERT_TRUE(waitUntil([&] { return other.isActive(); }));
  const auto window = makeWindow();
  window->orderFront();
  EXPECT_TRUE(window->isVisible());
  settle();
  EXPECT_FALSE(window->isKey());
  EXPECT_TRUE(other.isActive());
  window->orderFront();
  settle();
  EXPECT_TRUE(other.isActive());
}

TEST_F(GtkPanelWindowTest, TakesTheKeyboardAndGivesItBack) {
  const OtherWindow other;
  ASSERT_TRUE(waitUntil([&] { return other.isActive(); }));
  const auto window = makeWindow();
  window->makeKeyAndOrderFront();
  ASSERT_TRUE(waitUntil([&] { return window->isKey(); }));
  window->resignKey();
  EXPECT_FALSE(window->isKey()) << "at once";
  // The window manager tells of the active window a moment after that has the keyboard.
  ASSERT_TRUE(waitUntil([&] { return other.isActive() && !window->isKey(); }));
  EXPECT_TRUE(window->isVisible());
  window->makeKeyAndOrderFront();
  EXPECT_TRUE(waitUntil([&] { return window->isKey(); })) << "also when it is visible already";
}

TEST_F(GtkPanelWindowTest, TakesTheKeyboardWhenItWasShownWithoutIt) {
  const OtherWindow other;
  ASSERT_TRUE(waitUntil([&] { return other.isActive(); }));
  const auto window = makeWindow();
  window->orderFront();
  settle();
  window->makeKeyAndOrderFront();
  EXPECT_TRUE(waitUntil([&] { return window->isKey(); }));
}

TEST_F(GtkPanelWindowTest, SavesWhereTheUserPutsIt) {
  {
    const auto window = makeWindow();
    window->setFrame({600, 200, 460, 580});
    window->orderFront();
    settle();
    ASSERT_TRUE(defaults.texts.empty());
    ChildProcess::run({"xdotool", "windowmove", std::to_string(idOf("^Quorin$")), "200", "100"});
    ASSERT_TRUE(waitUntil([&] { return !defaults.texts.empty(); }));
  }
  const auto saved = DesktopGeometry::savedFrame(defaults.texts[frameKey]);
  ASSERT_TRUE(saved);
  EXPECT_LT(saved->x, 300);
  EXPECT_EQ(saved->width, 460);
  const auto again = makeWindow();
  EXPECT_EQ(again->frame(), *saved);
  again->orderFront();
  settle();
  EXPECT_EQ(again->frame(), *saved);
}

TEST_F(GtkPanelWindowTest, DoesNotTakeWhatItAskedForForTheUsersDoing) {
  const OtherWindow other;
  const auto window = makeWindow();
  window->orderFront();
  runFor(1500ms);
  // Window managers tell where a window is also when it has not moved.
  ChildProcess::run({"xdotool", "windowraise", std::to_string(other.id())});
  ChildProcess::run({"xdotool", "windowraise", std::to_string(idOf("^Quorin$"))});
  XEvent told{};
  told.xconfigure.type = ConfigureNotify;
  told.xconfigure.event = told.xconfigure.window = idOf("^Quorin$");
  const ScreenFrame frame = window->frame();
  told.xconfigure.x = 1;
  told.xconfigure.y = 900 - static_cast<int>(frame.maxY()) + 20;
  told.xconfigure.width = 460;
  told.xconfigure.height = 560;
  XSendEvent(gdk_x11_get_default_xdisplay(), told.xconfigure.window, False, StructureNotifyMask,
             &told);
  settle();
  EXPECT_TRUE(defaults.texts.empty());
}

TEST_F(GtkPanelWindowTest, DoesNotTakeALateWindowManagersAnswerForTheUsersDoing) {
  const auto window = makeWindow();
  window->setFrame({600, 200, 460, 580});
  window->orderFront();
  settle();
  display->pauseWindowManager();
  window->setFrame({300, 100, 460, 580});
  runFor(1500ms);
  display->resumeWindowManager();
  ASSERT_TRUE(waitUntil([&] { return window->frame().x == 300; }));
  settle();
  EXPECT_TRUE(defaults.texts.empty());
}

TEST_F(GtkPanelWindowTest, SavesWhereTheUserPutItJustBeforeItWasHidden) {
  const auto window = makeWindow();
  window->setFrame({600, 200, 460, 580});
  window->orderFront();
  settle();
  ChildProcess::run({"xdotool", "windowmove", std::to_string(idOf("^Quorin$")), "200", "100"});
  ASSERT_TRUE(waitUntil([&] { return window->frame().x < 300; }));
  window->orderOut();
  EXPECT_FALSE(defaults.texts.empty());
}

TEST_F(GtkPanelWindowTest, SavesAWideWindowAsItWouldBeWithoutTheWidening) {
  const auto window = makeWindow();
  window->setFrame({500, 200, 800, 580});
  window->setWidening(340, 120);
  window->orderFront();
  settle();
  ChildProcess::run({"xdotool", "windowmove", std::to_string(idOf("^Quorin$")), "200", "100"});
  ASSERT_TRUE(waitUntil([&] { return !defaults.texts.empty(); }));
  const auto saved = DesktopGeometry::savedFrame(defaults.texts[frameKey]);
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->width, 460);
  EXPECT_EQ(saved->x, window->frame().x + 120);
}

TEST_F(GtkPanelWindowTest, BringsASavedFrameOffTheScreenBack) {
  defaults.texts[frameKey] = "4000 3000 460 580 3840 0 1920 1080 ";
  const auto window = makeWindow();
  window->orderFront();
  settle();
  EXPECT_EQ(window->frame(), (ScreenFrame{980, 320, 460, 580}));
}

TEST_F(GtkPanelWindowTest, IsNeverNarrowerThanItsMinimum) {
  const auto window = makeWindow();
  window->orderFront();
  settle();
  ChildProcess::run({"xdotool", "windowsize", std::to_string(idOf("^Quorin$")), "100", "100"});
  settle();
  EXPECT_GE(window->frame().width, 320);
  EXPECT_GE(window->frame().height, 320);
}

TEST_F(GtkPanelWindowTest, KnowsTheScreens) {
  const auto window = makeWindow();
  const std::vector<Screen> screens = window->screens();
  ASSERT_EQ(screens.size(), 1u);
  EXPECT_EQ(screens[0].frame, (ScreenFrame{0, 0, 1440, 900}));
  EXPECT_EQ(screens[0].visibleFrame, (ScreenFrame{0, 0, 1440, 900}));
  EXPECT_EQ(window->screen(), screens[0]);
  EXPECT_EQ(window->mainScreen(), screens[0]);
}

TEST_F(GtkPanelWindowTest, StaysAboveAFullScreenWindow) {
  const OtherWindow other;
  ASSERT_TRUE(waitUntil([&] { return other.isActive(); }));
  other.fillScreen();
  ASSERT_TRUE(waitUntil([&] { return session.window(other.id())->isFullScreen; }));
  const auto window = makeWindow();
  window->orderFront();
  const X11Session::WindowId panel = idOf("^Quorin$");
  EXPECT_TRUE(waitUntil([&] { return session.windowsFromTop().front() == panel; }));
  EXPECT_EQ(session.window(panel)->transientFor, other.id());
}

TEST_F(GtkPanelWindowTest, WorksWithoutAWindowManager) {
  display->stopWindowManager();
  {
    const auto window = makeWindow();
    window->setFrame({600, 200, 460, 560});
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(waitUntil([&] { return window->isKey(); }));
    settle();
    EXPECT_EQ(window->frame(), (ScreenFrame{600, 200, 460, 560}));
    window->resignKey();
    EXPECT_FALSE(window->isKey());
    window->orderOut();
    window->orderFront();
    settle();
    EXPECT_EQ(window->frame(), (ScreenFrame{600, 200, 460, 560}));
  }
  display->startWindowManager();
}

}  // namespace
}  // namespace quorin
