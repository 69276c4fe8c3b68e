// The marks keeper of this process, as the system sees it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/types.h>
#include <unistd.h>

#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {

// The one that lives; 0 for none.
inline pid_t keeper() {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const int number = std::atoi(entry.path().filename().c_str());
    if (number == 0) continue;
    std::ostringstream read;
    read << std::ifstream(entry.path() / "stat").rdbuf();  // nothing when it ends meanwhile
    const std::string status = read.str();
    const std::size_t name = status.find("(quorin-marks-ke) ");
    if (name == std::string::npos) continue;
    std::istringstream rest(status.substr(status.rfind(") ") + 2));
    char state = 0;
    pid_t parent = 0;
    rest >> state >> parent;
    if (parent == ::getpid() && state != 'Z') return number;
  }
  return 0;
}

// True once there is one that is not the first. It is looked for once: between two looks a killed
// one may go.
inline bool hasNewKeeperAfter(pid_t first) {
  const pid_t now = keeper();
  return now > 0 && now != first;
}

// As long as it lives no keeper can be started: what is started then finds no library of C.
class NoNewKeeper {
 public:
  NoNewKeeper() {
    std::ofstream(folder_ / "libc.so.6") << "none";
    ::setenv(variable, folder_.path().c_str(), 1);
  }
  ~NoNewKeeper() { ::unsetenv(variable); }
  NoNewKeeper(const NoNewKeeper&) = delete;
  NoNewKeeper& operator=(const NoNewKeeper&) = delete;

 private:
  static constexpr const char* variable = "LD_LIBRARY_PATH";
  TemporaryFolder folder_;
};

}  // namespace quorin::host::calc
