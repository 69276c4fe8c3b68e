// Hands a command line to a running office, as a further start with the same user folder does. No
// process is started for that: one that found the office just starting or ending would become the
// office itself.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace quorin::host::calc {

enum class OfficeAnswer {
  done,         // it has taken the command line; what that asks for may take a moment more
  noAnswer,     // not until the deadline, or it hung up: offices do while they start and end
  unreachable,  // its socket is not where we could get at it
};

// `socket` is the office's own (OfficeProcess::requestSocket).
OfficeAnswer handToOffice(const std::filesystem::path& socket,
                          const std::vector<std::string>& arguments,
                          std::chrono::steady_clock::time_point deadline);

}  // namespace quorin::host::calc
