// ToolProcess: one run of a program with its three streams in the test's hands. Ended, if need be,
// and reaped at destruction.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace quorin {

class ToolProcess {
 public:
  using Variables = std::vector<std::pair<std::string, std::string>>;  // in place of inherited ones

  ToolProcess(const std::vector<std::string>& command, const Variables& variables);
  ~ToolProcess();
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;

  void write(const std::string& text);
  void closeInput();

  // The next line of standard output, without its line feed; none at its end, and none when it
  // does not come within two minutes.
  std::optional<std::string> readLine();

  // Waits for the end; the exit status, or 128 and the number of the signal that ended it.
  int wait();

  std::string errors();  // what it wrote to standard error; after its end
  void signal(int number) const;
  pid_t id() const { return id_; }

 private:
  pid_t id_ = -1;
  int input_ = -1;
  int output_ = -1;
  int errors_ = -1;
  std::string pending_;
};

// The processes whose arguments hold this text.
std::vector<pid_t> processesWith(const std::string& text);

// The name of the program that a process runs, without its folder; empty when it has ended.
std::string programOf(pid_t process);

// Waits until all of them have ended. False when some are still there after a minute.
bool waitUntilEnded(const std::vector<pid_t>& processes);

}  // namespace quorin
