#include "tests/fakes/ui/VirtualDisplay.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorin::ui {

namespace {

// No key of the window manager's own: the tests press them.
constexpr const char* windowManagerConfiguration =
    R"(<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <placement><policy>Smart</policy></placement>
  <theme><name>Clearlooks</name></theme>
  <keyboard></keyboard>
  <mouse><context name="Client">
    <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
  </context><context name="Titlebar">
    <mousebind button="Left" action="Press"><action name="Focus"/></mousebind>
    <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
  </context><context name="Close">
    <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
  </context></mouse>
</openbox_config>
)";

constexpr int startMilliseconds = 20'000;

// One line without its end; empty when none comes in time.
std::string readLine(int descriptor) {
  std::string line;
  for (;;) {
    pollfd ready{descriptor, POLLIN, 0};
    char next = 0;
    if (poll(&ready, 1, startMilliseconds) != 1 || read(descriptor, &next, 1) != 1) return {};
    if (next == '\n') return line;
    line += next;
  }
}

}  // namespace

VirtualDisplay::VirtualDisplay(const DisplayOptions& options) {
  std::string pattern = (std::filesystem::temp_directory_path() / "quorin-display-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  ChildProcess::Options child;
  child.passDescriptor = ends[1];
  const std::string screen =
      std::to_string(options.width) + "x" + std::to_string(options.height) + "x24";
  server_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0",
                               screen, "-nolisten", "tcp", "-noreset"},
      child);
  close(ends[1]);
  const std::string number = readLine(ends[0]);
  close(ends[0]);
  if (number.empty()) throw std::runtime_error("Xvfb did not start");
  name_ = ":" + number;
  setenv("DISPLAY", name_.c_str(), 1);
  unsetenv("WAYLAND_DISPLAY");
  setenv("GDK_BACKEND", "x11", 1);
  // No helpers of the desktop that would outlive the test.
  setenv("NO_AT_BRIDGE", "1", 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  setenv("GSETTINGS_BACKEND", "memory", 1);
  if (options.windowManager) startWindowManager();
}

VirtualDisplay::~VirtualDisplay() {
  windowManager_.reset();
  server_.reset();
  std::filesystem::remove_all(folder_);
}

void VirtualDisplay::startWindowManager() {
  const std::string configuration = folder_ + "/rc.xml";
  std::ofstream(configuration) << windowManagerConfiguration;
  const std::string ready = folder_ + "/ready";
  unlink(ready.c_str());
  if (mkfifo(ready.c_str(), 0600) != 0) throw std::runtime_error("cannot make a pipe");
  const int descriptor = open(ready.c_str(), O_RDWR | O_CLOEXEC);
  ChildProcess::Options child;
  child.environment["XDG_CACHE_HOME"] = folder_;
  child.environment["XDG_CONFIG_HOME"] = folder_;
  // The start-up command tells that windows are managed from now on.
  windowManager_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"openbox", "--sm-disable", "--config-file", configuration,
                               "--startup", "sh -c 'echo ready > " + ready + "'"},
      child);
  const std::string told = readLine(descriptor);
  close(descriptor);
  if (told != "ready") throw std::runtime_error("openbox did not start");
}

bool VirtualDisplay::xdotool(const std::vector<std::string>& arguments) const {
  std::vector<std::string> command{"xdotool"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildProcess::Options options;
  options.environment["DISPLAY"] = name_;
  return ChildProcess(command, options).wait(std::chrono::seconds(20)) == 0;
}

void VirtualDisplay::screenshot(const std::string& file) const {
  ChildProcess::run({"import", "-display", name_, "-window", "root", file});
}

}  // namespace quorin::ui
