// A process that stands still, for tests of what waits for it.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <signal.h>
#include <string>
#include <sys/types.h>
#include <system_error>
#include <thread>

namespace quorin {

// True if every thread of the process is stopped. A signal stops one thread after another: until
// the last has stopped, the process still answers.
inline bool isStopped(pid_t process) {
  const std::filesystem::path tasks = "/proc/" + std::to_string(process) + "/task";
  std::error_code gone;
  for (auto task = std::filesystem::directory_iterator(tasks, gone);
       task != std::filesystem::directory_iterator(); task.increment(gone)) {
    std::ifstream file(task->path() / "stat");
    const std::string stat{std::istreambuf_iterator<char>(file), {}};
    const auto name = stat.rfind(") ");  // the name before it may hold anything
    if (name == std::string::npos || stat[name + 2] != 'T') return false;
  }
  return !gone;
}

// Stops the process and returns true once it stands still, false if it does not within 20 s.
// kill(process, SIGCONT) lets it go on.
inline bool stopProcess(pid_t process) {
  if (::kill(process, SIGSTOP) != 0) return false;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!isStopped(process)) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace quorin
