// What tests of files need again and again.
#pragma once

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quorin {

inline void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

// What can be read of it: nothing of a file that is missing or of a process that has ended.
inline std::string readFile(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// The names in a folder, sorted; hidden ones too.
inline std::vector<std::string> filesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// While it lives the process has an ordinary user's rights, though the tests may run as root.
class OrdinaryUser {
 public:
  OrdinaryUser() : root_(::geteuid() == 0) {
    if (root_ && ::seteuid(65534) != 0) throw std::runtime_error("cannot change the user");
  }
  ~OrdinaryUser() {
    if (root_ && ::seteuid(0) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  bool root_;
};

// Runs the work in a process of its own; true when that process was killed by SIGKILL, false when
// it came to its end.
inline bool killedDuring(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      work();
    } catch (...) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

}  // namespace quorin
