// What /proc tells about LibreOffice's processes and our own, at once and without asking them. Any
// thread.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace quorin::host::calc {

struct OfficeProcess {
  pid_t id = 0;
  std::filesystem::path program;       // its soffice.bin
  std::vector<std::string> arguments;  // without the program's own name

  // The value of -env:UserInstallation, a file URL; empty for the default folder.
  std::string userInstallation() const;
  bool hasArgument(std::string_view argument) const;  // with one or two dashes in front
  // The socket through which it takes the command lines of further starts with its user folder.
  // None while it is just starting, or when it may not be looked into.
  std::optional<std::filesystem::path> requestSocket(
      const std::filesystem::path& proc = "/proc") const;
  // Those of its sockets whose path holds the text.
  std::vector<std::filesystem::path> sockets(std::string_view text,
                                             const std::filesystem::path& proc = "/proc") const;
  bool operator==(const OfficeProcess&) const = default;
};

// The soffice.bin processes of this user, by process id.
std::vector<OfficeProcess> officeProcesses(const std::filesystem::path& proc = "/proc");

// Waits while the process is stopped by a signal. False when it still is after `patience`.
bool waitWhileStopped(pid_t process, std::chrono::milliseconds patience);

// When the process started, in the system's own count, which tells it from a later one of its
// number. 0 when there is none, or when it has ended and its parent has not asked for that yet.
unsigned long long startOf(pid_t process);

}  // namespace quorin::host::calc
