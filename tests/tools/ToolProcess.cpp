#include "tests/tools/ToolProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quorin {

namespace {

constexpr auto patience = std::chrono::minutes(2);

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return ends;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);
  return list;
}

std::vector<std::string> environmentWith(const ToolProcess::Variables& variables) {
  std::vector<std::string> entries;
  for (char** entry = environ; *entry; ++entry) {
    const std::string text = *entry;
    const bool replaced = std::any_of(
        variables.begin(), variables.end(),
        [&text](const auto& variable) { return text.starts_with(variable.first + "="); });
    if (!replaced) entries.push_back(text);
  }
  for (const auto& [name, value] : variables) entries.push_back(name + "=" + value);
  return entries;
}

// Milliseconds for poll, never negative.
int left(std::chrono::steady_clock::time_point deadline) {
  const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
      deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, time.count()));
}

}  // namespace

ToolProcess::ToolProcess(const std::vector<std::string>& command, const Variables& variables) {
  const auto in = makePipe();
  const auto out = makePipe();
  const auto err = makePipe();
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, in[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&files, err[1], STDERR_FILENO);
  std::vector<std::string> arguments = command;
  std::vector<std::string> entries = environmentWith(variables);
  const int failure = posix_spawn(&id_, command.front().c_str(), &files, nullptr,
                                  pointers(arguments).data(), pointers(entries).data());
  posix_spawn_file_actions_destroy(&files);
  close(in[0]);
  close(out[1]);
  close(err[1]);
  input_ = in[1];
  output_ = out[0];
  errors_ = err[0];
  if (failure != 0) throw std::runtime_error("cannot start " + command.front());
}

ToolProcess::~ToolProcess() {
  closeInput();
  if (id_ > 0) {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  close(output_);
  close(errors_);
}

void ToolProcess::write(const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(input_, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) throw std::runtime_error("the program does not read");
    if (count > 0) done += static_cast<std::size_t>(count);
  }
}

void ToolProcess::closeInput() {
  if (input_ >= 0) close(input_);
  input_ = -1;
}

std::optional<std::string> ToolProcess::readLine() {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (;;) {
    if (const std::size_t feed = pending_.find('\n'); feed != std::string::npos) {
      std::string line = pending_.substr(0, feed);
      pending_.erase(0, feed + 1);
      return line;
    }
    pollfd watched{output_, POLLIN, 0};
    if (poll(&watched, 1, left(deadline)) == 0) return std::nullopt;
    std::array<char, 4096> bytes;
    const ssize_t count = read(output_, bytes.data(), bytes.size());
    if (count == 0) return std::nullopt;
    if (count > 0) pending_.append(bytes.data(), static_cast<std::size_t>(count));
  }
}

int ToolProcess::wait() {
  int status = 0;
  while (waitpid(id_, &status, 0) < 0)
    if (errno != EINTR) throw std::runtime_error("nothing to wait for");
  id_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string ToolProcess::errors() {
  std::string text;
  std::array<char, 4096> bytes;
  for (ssize_t count = 0; (count = read(errors_, bytes.data(), bytes.size())) != 0;) {
    if (count > 0) text.append(bytes.data(), static_cast<std::size_t>(count));
    if (count < 0 && errno != EINTR) break;
  }
  return text;
}

void ToolProcess::signal(int number) const {
  kill(id_, number);
}

std::vector<pid_t> processesWith(const std::string& text) {
  std::vector<pid_t> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "cmdline", std::ios::binary);
    std::ostringstream arguments;
    arguments << file.rdbuf();  // gives nothing when the process ends meanwhile
    if (arguments.str().find(text) != std::string::npos) found.push_back(std::stoi(name));
  }
  return found;
}

std::string programOf(pid_t process) {
  std::error_code ended;
  return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", ended)
      .filename();
}

bool waitUntilEnded(const std::vector<pid_t>& processes) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  return std::all_of(processes.begin(), processes.end(), [deadline](pid_t process) {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0) return errno == ESRCH;
    pollfd watched{descriptor, POLLIN, 0};
    const int ended = poll(&watched, 1, left(deadline));
    close(descriptor);
    return ended == 1;
  });
}

}  // namespace quorin
