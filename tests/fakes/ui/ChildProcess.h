// ChildProcess: a program that a test starts and ends with it. It dies with the test program, too.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorin::ui {

class ChildProcess {
 public:
  struct Options {
    std::map<std::string, std::string> environment;  // added to this process's own
    std::string output;                              // a file for what it prints; empty: nowhere
    int passDescriptor = -1;                         // stays open in the child
  };

  ChildProcess(const std::vector<std::string>& command, const Options& options);
  // Asks it to end, then insists.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t id() const { return pid_; }
  void signal(int number) const;
  bool isRunning();
  // Its exit status, 128 + the signal that ended it, or none when it has not ended in time.
  std::optional<int> wait(std::chrono::milliseconds atMost);

  // Runs a command to its end and gives what it wrote to standard output; throws when it fails.
  static std::string run(const std::vector<std::string>& command);

 private:
  pid_t pid_ = -1;
  std::optional<int> status_;
};

}  // namespace quorin::ui
