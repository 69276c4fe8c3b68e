// A program that a test starts, speaks with line by line, stops and ends.
#pragma once

#include <array>
#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace quorin {

class ChildProgram {
 public:
  explicit ChildProgram(std::vector<std::string> command) {
    std::vector<char*> pointers;
    for (std::string& text : command) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    std::array<int, 2> input{}, output{};
    if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0) {
      throw std::runtime_error("no pipe");
    }
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, output[1], STDOUT_FILENO);
    const int failure =
        ::posix_spawn(&process_, command[0].c_str(), &files, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = output[0];
    if (failure != 0) throw std::runtime_error("cannot start " + command[0]);
  }
  ~ChildProgram() {
    kill();
    if (input_ >= 0) ::close(input_);
    ::close(output_);
  }
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  pid_t process() const { return process_; }

  // Writes the line and gives the one that comes back.
  std::string ask(std::string line) {
    line += '\n';
    if (::write(input_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) return {};
    return readLine();
  }

  // Empty when none comes within a minute.
  std::string readLine() {
    std::string answer;
    constexpr int minute = 60000;
    for (char c = 0;; answer += c) {
      pollfd ready{output_, POLLIN, 0};
      if (::poll(&ready, 1, minute) != 1 || ::read(output_, &c, 1) != 1) return {};
      if (c == '\n') return answer;
    }
  }

  // Closes its input and waits for its end; its exit status.
  int finish() {
    ::close(input_);
    input_ = -1;
    int status = -1;
    if (process_ > 0) ::waitpid(process_, &status, 0);
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = 0;
  }

 private:
  pid_t process_ = 0;
  int input_ = -1, output_ = -1;
};

}  // namespace quorin
