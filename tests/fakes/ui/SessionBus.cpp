#include "tests/fakes/ui/SessionBus.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <stdlib.h>
#include <unistd.h>

namespace quorin::ui {

namespace {

std::string configuration(const std::string& folder) {
  return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=)" +
         folder + R"(/bus</listen><policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>
)";
}

}  // namespace

SessionBus::SessionBus() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quorin-bus-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
  const std::string file = folder_ + "/bus.conf";
  std::ofstream(file) << configuration(folder_);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  ChildProcess::Options child;
  child.passDescriptor = ends[1];
  daemon_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"dbus-daemon", "--nofork", "--config-file=" + file,
                               "--print-address=" + std::to_string(ends[1])},
      child);
  close(ends[1]);
  // It tells its address when it listens; the pipe ends when it ends.
  for (char next = 0; read(ends[0], &next, 1) == 1 && next != '\n';) address_ += next;
  close(ends[0]);
  if (address_.empty()) throw std::runtime_error("dbus-daemon did not start");
  setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
}

SessionBus::~SessionBus() {
  daemon_.reset();
  std::filesystem::remove_all(folder_);
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

}  // namespace quorin::ui
