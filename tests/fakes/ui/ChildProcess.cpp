#include "tests/fakes/ui/ChildProcess.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdexcept>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorin::ui {

namespace {

using namespace std::chrono_literals;

std::vector<char*> argumentsOf(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& one : command) arguments.push_back(const_cast<char*>(one.c_str()));
  arguments.push_back(nullptr);
  return arguments;
}

[[noreturn]] void becomeCommand(const std::vector<std::string>& command, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  execvp(command.front().c_str(), argumentsOf(command).data());
  _exit(127);
}

int statusOf(int raw) {
  return WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Options& options) {
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("cannot fork");
  if (pid_ > 0) return;
  for (const auto& [name, value] : options.environment) setenv(name.c_str(), value.c_str(), 1);
  const char* path = options.output.empty() ? "/dev/null" : options.output.c_str();
  const int out = open(path, O_WRONLY | O_CREAT | O_APPEND, 0600);
  dup2(out, STDOUT_FILENO);
  dup2(out, STDERR_FILENO);
  if (options.passDescriptor >= 0) fcntl(options.passDescriptor, F_SETFD, 0);
  becomeCommand(command, parent);
}

ChildProcess::~ChildProcess() {
  if (!isRunning()) return;
  signal(SIGTERM);
  if (wait(5s)) return;
  signal(SIGKILL);
  wait(5s);
}

void ChildProcess::signal(int number) const {
  if (!status_) kill(pid_, number);
}

bool ChildProcess::isRunning() {
  return !wait(0ms);
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds atMost) {
  if (status_) return status_;
  const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  if (descriptor >= 0) {
    pollfd ended{descriptor, POLLIN, 0};
    while (poll(&ended, 1, static_cast<int>(atMost.count())) < 0 && errno == EINTR) {
    }
    close(descriptor);
  }
  int raw = 0;
  if (waitpid(pid_, &raw, WNOHANG) == pid_) status_ = statusOf(raw);
  return status_;
}

std::string ChildProcess::run(const std::vector<std::string>& command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  const pid_t parent = getpid();
  const pid_t pid = fork();
  if (pid == 0) {
    dup2(ends[1], STDOUT_FILENO);
    becomeCommand(command, parent);
  }
  close(ends[1]);
  std::string text;
  char buffer[4096];
  for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
    text.append(buffer, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  int raw = 0;
  waitpid(pid, &raw, 0);
  if (statusOf(raw) != 0) {
    throw std::runtime_error(command.front() + " ended with " + std::to_string(statusOf(raw)));
  }
  return text;
}

}  // namespace quorin::ui
