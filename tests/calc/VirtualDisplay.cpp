#include "tests/calc/VirtualDisplay.h"

#include <array>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quorin::host::calc {
namespace {

pid_t start(std::vector<std::string> command, const std::string& display, int keptOpen = -1) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (!std::string_view(*variable).starts_with("DISPLAY=")) variables.emplace_back(*variable);
  }
  variables.push_back("DISPLAY=" + display);
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
  };
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  if (keptOpen >= 0) posix_spawn_file_actions_adddup2(&files, keptOpen, 3);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  const int failure = ::posix_spawnp(&process, command[0].c_str(), &files, nullptr,
                                     pointers(command).data(), pointers(variables).data());
  posix_spawn_file_actions_destroy(&files);
  if (failure != 0) throw std::runtime_error("cannot start " + command[0]);
  return process;
}

void end(pid_t process) {
  if (process <= 0) return;
  ::kill(process, SIGTERM);
  ::waitpid(process, nullptr, 0);
}

}  // namespace

VirtualDisplay::VirtualDisplay() {
  std::array<int, 2> report{};
  if (::pipe2(report.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  server_ = start({"Xvfb", "-displayfd", "3", "-screen", "0", "1400x900x24", "-nolisten", "tcp"},
                  "", report[1]);
  ::close(report[1]);
  name_ = ":";
  for (char c = 0; ::read(report[0], &c, 1) == 1 && c != '\n';) name_ += c;
  ::close(report[0]);
  if (name_.size() == 1) {
    end(server_);
    throw std::runtime_error("Xvfb does not start");
  }
  manager_ = start({"openbox"}, name_);
}

VirtualDisplay::~VirtualDisplay() {
  end(manager_);
  end(server_);
}

bool VirtualDisplay::xdotool(const std::vector<std::string>& arguments) const {
  std::vector<std::string> command{"xdotool"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  int status = 0;
  ::waitpid(start(command, name_), &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace quorin::host::calc
