#include "app/linux/GtkAlerts.h"
#include "tests/app/linux/GtkFixture.h"

// Last: its macros are names elsewhere.
#include <X11/Xlib.h>

namespace quorin {
namespace {

// Another program's window that has the keyboard.
class WindowInUse {
 public:
  WindowInUse() : display_(XOpenDisplay(nullptr)) {
    id_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 300, 200, 0, 0, 0);
    XSelectInput(display_, id_, StructureNotifyMask);
    XMapWindow(display_, id_);
    XEvent event;
    XWindowEvent(display_, id_, StructureNotifyMask, &event);
    XSetInputFocus(display_, id_, RevertToParent, CurrentTime);
    XSync(display_, False);
  }
  ~WindowInUse() { XCloseDisplay(display_); }
  WindowInUse(const WindowInUse&) = delete;
  WindowInUse& operator=(const WindowInUse&) = delete;

  X11Session::WindowId id() const { return id_; }

 private:
  Display* display_;
  X11Session::WindowId id_ = 0;
};

class GtkAlertsTest : public GtkFixture {
 protected:
  // The alert is there and what is typed goes to it.
  bool hasTheKeyboard(const std::string& message) {
    return waitUntil([&] {
      return alerts.shown() && alerts.shown()->message == message &&
             session.activeWindow() != other.id() && session.activeWindow() != 0;
    });
  }

  // Window managers differ in what they give the keyboard to unasked. Here nobody does.
  struct WithoutWindowManager {
    WithoutWindowManager() { display->stopWindowManager(); }
    ~WithoutWindowManager() { display->startWindowManager(); }
  };

  const WithoutWindowManager nobody;
  X11Session session{gdk_display_get_default()};
  GtkAlerts alerts{&session};
  const WindowInUse other;
};

TEST_F(GtkAlertsTest, TakeTheKeyboardFromTheProgramInFrontOneAfterTheOther) {
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == other.id(); }));
  std::vector<std::string> answered;
  for (const char* text : {"First", "Second"}) {
    alerts.show({text, "", {"Report…", "Not Now"}}, [&answered, text](std::size_t button) {
      answered.push_back(text + std::to_string(button));
    });
  }
  ASSERT_TRUE(hasTheKeyboard("First"));
  ASSERT_TRUE(display->xdotool({"key", "Escape"}));
  ASSERT_TRUE(hasTheKeyboard("Second"));
  ASSERT_TRUE(display->xdotool({"key", "Return"}));
  EXPECT_TRUE(waitUntil([&] { return answered.size() == 2; }));
  EXPECT_EQ(answered, (std::vector<std::string>{"First1", "Second0"}));
  EXPECT_EQ(alerts.shown(), nullptr);
}

}  // namespace
}  // namespace quorin
