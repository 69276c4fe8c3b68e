// ProgressLine: one line on standard error where that is a terminal, written over by the next; else
// nothing. Main thread.
#pragma once

#include <cstdio>
#include <string>
#include <unistd.h>
#include <utility>

namespace quorin::ctl {

class ProgressLine {
 public:
  ProgressLine() = default;
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void tell(const std::string& text) {
    if (!isTerminal_) return;
    // Without wrapping, for only one line is taken back.
    std::fprintf(stderr, "\r\033[K\033[?7l%s\033[?7h", text.c_str());
    std::fflush(stderr);
    isShown_ = true;
  }
  void clear() {
    if (std::exchange(isShown_, false)) std::fputs("\r\033[K", stderr);
  }

 private:
  const bool isTerminal_ = ::isatty(STDERR_FILENO) == 1;
  bool isShown_ = false;
};

}  // namespace quorin::ctl
