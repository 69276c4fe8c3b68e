#include <unistd.h>

#include "app/linux/GtkPanelWindow.h"
#include "app/linux/X11Workspace.h"
#include "tests/app/linux/GtkFixture.h"

// Last: its macros are names elsewhere.
#include <X11/Xutil.h>
#include <gdk/gdkx.h>

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

// A window of some application. All belong to this process; their classes differ.
class TestWindow {
 public:
  explicit TestWindow(const std::string& windowClass, TestWindow* owner = nullptr)
      : window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)) {
    if (owner) gtk_window_set_transient_for(GTK_WINDOW(window_), GTK_WINDOW(owner->window_));
    gtk_window_set_default_size(GTK_WINDOW(window_), 300, 200);
    gtk_widget_realize(window_);
    setClass(windowClass);
    gtk_widget_show(window_);
    gtk_window_present(GTK_WINDOW(window_));
  }
  ~TestWindow() { gtk_widget_destroy(window_); }
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  void setClass(std::string windowClass) const {
    std::string name = "test";
    XClassHint hint{name.data(), windowClass.data()};
    XSetClassHint(gdk_x11_get_default_xdisplay(), id(), &hint);
  }

  X11Session::WindowId id() const { return X11Session::idOf(gtk_widget_get_window(window_)); }

 private:
  GtkWidget* window_;
};

// A window over a connection of its own.
class ForeignWindow {
 public:
  explicit ForeignWindow(const std::string& windowClass) : display_(XOpenDisplay(nullptr)) {
    id_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 300, 200, 0, 0, 0);
    setClass(windowClass);
    XMapWindow(display_, id_);
    XFlush(display_);
  }
  ~ForeignWindow() { XCloseDisplay(display_); }
  ForeignWindow(const ForeignWindow&) = delete;
  ForeignWindow& operator=(const ForeignWindow&) = delete;

  void setClass(std::string windowClass) const {
    std::string name = "test";
    XClassHint hint{name.data(), windowClass.data()};
    XSetClassHint(display_, id_, &hint);
    XFlush(display_);
  }
  X11Session::WindowId id() const { return id_; }

 private:
  Display* display_;
  X11Session::WindowId id_ = 0;
};

class X11WorkspaceTest : public GtkFixture {
 protected:
  X11WorkspaceTest() : session(gdk_display_get_default()), workspace(session) {
    workspace.observeActivation(
        [this](const RunningApplication& application) { told.push_back(application.identifier); });
  }

  std::string front() {
    const auto application = workspace.frontmostApplication();
    return application ? application->identifier : "none";
  }
  bool comesToTheFront(const std::string& identifier) {
    return waitUntil([&] { return front() == identifier; });
  }

  // The X server has an answer before it tells of the change.
  bool tells(const std::vector<std::string>& all) {
    waitUntil([&] { return told.size() >= all.size(); });
    EXPECT_EQ(told, all);
    return told == all;
  }

  X11Session session;
  X11Workspace workspace;
  std::vector<std::string> told;
};

TEST_F(X11WorkspaceTest, KnowsCalcByExcelsIdentifierAndOthersByTheirClass) {
  const TestWindow calc("libreoffice-calc");
  ASSERT_TRUE(tells({"com.microsoft.Excel"}));
  const TestWindow writer("libreoffice-writer");
  ASSERT_TRUE(comesToTheFront("libreoffice-writer"));
  EXPECT_TRUE(tells({"com.microsoft.Excel", "libreoffice-writer"}));
}

TEST_F(X11WorkspaceTest, CountsADialogOfCalcAsCalc) {
  TestWindow calc("libreoffice-calc");
  ASSERT_TRUE(comesToTheFront("com.microsoft.Excel"));
  TestWindow dialog("Soffice", &calc);
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == dialog.id(); }));
  TestWindow second("Soffice", &dialog);
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == second.id(); }));
  EXPECT_EQ(front(), "com.microsoft.Excel");
  EXPECT_TRUE(tells({"com.microsoft.Excel"})) << "a change of window is none of program";
}

TEST_F(X11WorkspaceTest, TellsOfAWindowOnceItSaysWhatItIs) {
  const TestWindow editor("editor");
  ASSERT_TRUE(tells({"editor"}));
  const TestWindow office("Soffice");
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == office.id(); }));
  runFor(50ms);
  office.setClass("libreoffice-calc");
  EXPECT_TRUE(tells({"editor", "com.microsoft.Excel"}));
}

// A window that GDK knows nothing of, as all of other applications are.
TEST_F(X11WorkspaceTest, TellsOfAnotherProgramsWindowOnceItSaysWhatItIs) {
  const ForeignWindow office("Soffice");
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == office.id(); }));
  runFor(50ms);
  EXPECT_THAT(told, IsEmpty());
  office.setClass("libreoffice-calc");
  EXPECT_TRUE(tells({"com.microsoft.Excel"}));
}

TEST_F(X11WorkspaceTest, DoesNotTakeADialogOfAnotherProgramForCalc) {
  TestWindow writer("libreoffice-writer");
  TestWindow dialog("Soffice", &writer);
  EXPECT_TRUE(comesToTheFront("Soffice"));
}

TEST_F(X11WorkspaceTest, KeepsTheApplicationInFrontWhileThePanelHasTheKeyboard) {
  const TestWindow calc("libreoffice-calc");
  ASSERT_TRUE(comesToTheFront("com.microsoft.Excel"));
  GtkPanelWindow panel({"Quorin", {0, 0, 460, 560}, {320, 320}, "Test"}, session,
                       platform->defaults());
  panel.makeKeyAndOrderFront();
  ASSERT_TRUE(waitUntil([&] { return panel.isKey(); }));
  EXPECT_EQ(front(), "com.microsoft.Excel");
  session.requestActivation(calc.id());
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == calc.id(); }));
  runFor(50ms);
  EXPECT_TRUE(tells({"com.microsoft.Excel"}));
}

TEST_F(X11WorkspaceTest, ForgetsAnApplicationThatVanishedWhileThePanelHadTheKeyboard) {
  GtkPanelWindow panel({"Quorin", {0, 0, 460, 560}, {320, 320}, "Test"}, session,
                       platform->defaults());
  {
    const TestWindow calc("libreoffice-calc");
    ASSERT_TRUE(comesToTheFront("com.microsoft.Excel"));
    panel.makeKeyAndOrderFront();
    ASSERT_TRUE(waitUntil([&] { return panel.isKey(); }));
  }
  EXPECT_TRUE(comesToTheFront("none"));
}

TEST_F(X11WorkspaceTest, TellsOfCalcAgainWhenNothingWasInFrontInBetween) {
  {
    const TestWindow calc("libreoffice-calc");
    ASSERT_TRUE(tells({"com.microsoft.Excel"}));
  }
  ASSERT_TRUE(comesToTheFront("none"));
  runFor(400ms);
  const TestWindow again("libreoffice-calc");
  ASSERT_TRUE(comesToTheFront("com.microsoft.Excel"));
  EXPECT_TRUE(tells({"com.microsoft.Excel", "com.microsoft.Excel"}));
}

TEST_F(X11WorkspaceTest, BringsTheTopmostWindowOfAnApplicationForward) {
  const TestWindow first("libreoffice-calc");
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == first.id(); }));
  const TestWindow second("libreoffice-calc");
  ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == second.id(); }));
  const TestWindow editor("editor");
  ASSERT_TRUE(comesToTheFront("editor"));
  const auto running = workspace.runningApplications("com.microsoft.Excel");
  ASSERT_EQ(running.size(), 1u);
  EXPECT_EQ(running[0].processIdentifier, getpid());
  workspace.activate(running[0]);
  EXPECT_TRUE(waitUntil([&] { return session.activeWindow() == second.id(); }));
}

TEST_F(X11WorkspaceTest, CountsTheStartCentreAsRunningAndNotAsInFront) {
  const TestWindow centre("libreoffice-startcenter");
  ASSERT_TRUE(comesToTheFront("libreoffice-startcenter"));
  EXPECT_EQ(workspace.runningApplications("com.microsoft.Excel").size(), 1u);
}

TEST_F(X11WorkspaceTest, FindsNoApplicationThatDoesNotRun) {
  const TestWindow writer("libreoffice-writer");
  ASSERT_TRUE(comesToTheFront("libreoffice-writer"));
  EXPECT_THAT(workspace.runningApplications("com.microsoft.Excel"), IsEmpty());
  workspace.activate({"com.microsoft.Excel", 1, false});
  runFor(100ms);
  EXPECT_EQ(front(), "libreoffice-writer");
}

TEST_F(X11WorkspaceTest, HasNoAnswerForAWindowThatIsGone) {
  X11Session::WindowId id = 0;
  {
    const TestWindow window("editor");
    id = window.id();
    ASSERT_TRUE(waitUntil([&] { return session.activeWindow() == id; }));
  }
  gdk_display_sync(gdk_display_get_default());
  EXPECT_FALSE(session.window(id));
  EXPECT_FALSE(session.decoration(id));
  session.requestActivation(id);
  session.setTransientFor(id, id);
  gdk_display_sync(gdk_display_get_default());
}

}  // namespace
}  // namespace quorin
