// The program's side of a Harness: a process for every life.
#pragma once

#include <cerrno>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "tests/kit/crash/Link.h"

namespace quorin::crash {

// For every line that it is sent, with the folder of the stores, it makes a process that serves
// there and ends. Call it before there are threads. Gives the exit status of whatever returns: the
// program itself, or such a process.
inline int nurse(Link control, const std::function<void(Link, const std::string&)>& serveAt) {
  while (auto line = control.receiveWith()) {
    auto& [folder, link] = *line;
    const pid_t child = ::fork();
    if (child < 0) return 1;
    if (child == 0) {
      serveAt(std::move(link), *folder.string());
      return 0;
    }
    { const Link closed = std::move(link); }
    int status = 0;
    control.send(child);
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    control.send(status);
  }
  return 0;
}

}  // namespace quorin::crash
