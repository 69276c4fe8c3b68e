// LogLines: a diagnostic log in a folder of its own, read back as "CATEGORY message" lines.
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "kit/support/DiagLog.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::fakes {

class LogLines {
 public:
  DiagLog& log() { return log_; }

  std::vector<std::string> lines() {
    log_.flush();
    std::vector<std::string> lines;
    std::ifstream file(folder_ / "quorin.log");
    for (std::string line; std::getline(file, line);)
      lines.push_back(line.substr(line.find(' ') + 1));  // without the time
    return lines;
  }

 private:
  TemporaryFolder folder_;
  DiagLog log_{folder_ / "quorin.log", 4000000, 3000000};
};

}  // namespace quorin::fakes
