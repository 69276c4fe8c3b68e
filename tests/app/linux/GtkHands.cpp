// The user's hands and other programs on a display of the test's own.
#include <fstream>

#include "kit/platform/XDGFolders.h"
#include "tests/app/hands/Hands.h"
#include "tests/app/linux/GtkFixture.h"
#ifdef QUORIN_STATUS_ITEM
#include "tests/app/linux/Bar.h"
#endif

// Last: its macros are names elsewhere.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace quorin::contract {

Traits traits() {
  return {};
}

#ifdef QUORIN_STATUS_ITEM
// The menu comes over the bus, in its own time.
bool chooseFromMenu(const std::string& title) {
  Bar bar(false);
  for (int attempt = 0; attempt < 20; ++attempt) {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    bar.open();
    for (const Shown& each : bar.layout()) {
      if (each.label != title || !each.enabled) continue;
      bar.click(each.id);
      return true;
    }
    turn();
  }
  return false;
}
#else
bool chooseFromMenu(const std::string&) {
  return false;
}
#endif

// A window over a connection of its own, which says that it is another process's.
struct OtherProgram::Program {
  explicit Program(std::string identifier) : display(XOpenDisplay(nullptr)) {
    window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 300, 200, 0, 0, 0);
    std::string name = "other";
    XClassHint hint{name.data(), identifier.data()};
    XSetClassHint(display, window, &hint);
    static long processes = 70'000;
    const long process = ++processes;
    XChangeProperty(display, window, XInternAtom(display, "_NET_WM_PID", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&process), 1);
    XMapWindow(display, window);
    XFlush(display);
  }
  ~Program() { XCloseDisplay(display); }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  Display* const display;
  Window window = 0;
};

OtherProgram::OtherProgram(const std::string& identifier)
    : program_(std::make_unique<Program>(identifier)) {}

OtherProgram::~OtherProgram() = default;

void OtherProgram::comeForward() const {
  GtkFixture::display->xdotool({"windowactivate", std::to_string(program_->window)});
}

// A file in the place of the folder.
void refuseLoginItem(bool refused) {
  const auto folder = XDGFolders(processEnvironment()).configuration() / "autostart";
  std::filesystem::remove_all(folder);
  if (!refused) return;
  std::filesystem::create_directories(folder.parent_path());
  std::ofstream(folder) << "no folder";
}

void pressAnyKey() {
  GtkFixture::display->xdotool({"key", "F9"});
}

}  // namespace quorin::contract
