#include "host/calc/office/OfficeWatchdog.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quorin::host::calc {

OfficeWatchdog::OfficeWatchdog(pid_t office, std::function<void()> release)
    : release_(std::move(release)),
      process_(static_cast<int>(::syscall(SYS_pidfd_open, office, 0))),
      signal_(::eventfd(0, EFD_CLOEXEC)),
      interrupted_(process_ < 0) {
  thread_ = std::thread([this] { run(); });
}

OfficeWatchdog::~OfficeWatchdog() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake();
  thread_.join();
  if (process_ >= 0) ::close(process_);
  ::close(signal_);
}

void OfficeWatchdog::setDeadline(std::optional<Clock::time_point> deadline) {
  {
    const std::lock_guard lock(mutex_);
    deadline_ = deadline;
  }
  wake();
}

bool OfficeWatchdog::deadlinePassed() const {
  const std::lock_guard lock(mutex_);
  return deadlinePassed_;
}

bool OfficeWatchdog::hasFired() const {
  const std::lock_guard lock(mutex_);
  return fired_;
}

void OfficeWatchdog::interrupt() {
  {
    const std::lock_guard lock(mutex_);
    interrupted_ = true;
  }
  wake();
}

void OfficeWatchdog::wake() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(signal_, &one, sizeof one);
}

int OfficeWatchdog::millisecondsLeft() const {
  if (!deadline_) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline_ - Clock::now());
  return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

void OfficeWatchdog::run() {
  for (;;) {
    int wait = -1;
    {
      const std::lock_guard lock(mutex_);
      if (stopping_) return;
      wait = millisecondsLeft();
      deadlinePassed_ = !interrupted_ && wait == 0;
      fired_ = interrupted_ || deadlinePassed_;
      if (fired_) break;
    }
    std::array<pollfd, 2> watched{pollfd{signal_, POLLIN, 0}, pollfd{process_, POLLIN, 0}};
    if (::poll(watched.data(), watched.size(), wait) < 0) continue;
    if (watched[1].revents != 0) {
      const std::lock_guard lock(mutex_);
      fired_ = true;
      break;
    }
    if (watched[0].revents != 0) {
      std::uint64_t count = 0;
      [[maybe_unused]] const auto got = ::read(signal_, &count, sizeof count);
    }
  }
  release_();
}

}  // namespace quorin::host::calc
