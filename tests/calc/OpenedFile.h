// Tells whether anybody has opened a file.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace quorin::host::calc {

class OpenedFile {
 public:
  explicit OpenedFile(const std::filesystem::path& file)
      : events_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    EXPECT_GE(::inotify_add_watch(events_, file.c_str(), IN_OPEN), 0);
  }
  ~OpenedFile() { ::close(events_); }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  // Since the last time.
  bool wasOpened() {
    alignas(inotify_event) char buffer[4096];
    bool any = false;
    while (::read(events_, buffer, sizeof buffer) > 0) any = true;
    return any;
  }

 private:
  const int events_;
};

}  // namespace quorin::host::calc
