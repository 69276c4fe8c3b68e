// lint: checks a handler library as far as that goes without Excel, by the rules of the linter and
// with the words of Excel's dictionary. Any thread.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorin::ctl {

struct Finding {
  int line = 0;  // 1-based
  std::string message;
  bool operator==(const Finding&) const = default;
};

// What is wrong with a script, by line.
std::vector<Finding> findingsOf(std::string_view source);

// The command: prints "FILE:LINE: message" for each finding. The exit status: 0 when there are
// none, 1 when there are, 2 with a line on standard error when the file cannot be read.
int lint(const std::filesystem::path& file);

}  // namespace quorin::ctl
