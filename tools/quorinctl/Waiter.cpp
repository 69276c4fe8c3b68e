#include "tools/quorinctl/Waiter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace quorin::ctl {

namespace {

[[noreturn]] void failed(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

Waiter::Waiter() {
  sigset_t ending;
  sigemptyset(&ending);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ending, number);
  if (pthread_sigmask(SIG_BLOCK, &ending, nullptr) != 0) failed("signals");
  signals_ = signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
  if (signals_ < 0) failed("signals");
  done_ = eventfd(0, EFD_CLOEXEC | EFD_SEMAPHORE);
  if (done_ < 0) failed("events");
}

Waiter::~Waiter() {
  close(signals_);
  close(done_);
}

Waiter::Event Waiter::waitForInput() {
  return wait({STDIN_FILENO}, Event::input, std::nullopt);
}

Waiter::Event Waiter::waitForInput(const std::vector<int>& descriptors, Limit limit) {
  return wait(descriptors, Event::input, limit);
}

Waiter::Event Waiter::waitForDone(Limit limit) {
  const Event event = wait({done_}, Event::done, limit);
  if (event == Event::done) waitForDoneAlone();
  return event;
}

void Waiter::waitForDoneAlone() {
  std::uint64_t count = 0;
  while (read(done_, &count, sizeof count) < 0)
    if (errno != EINTR) failed("events");
}

void Waiter::done() {
  const std::uint64_t one = 1;
  if (write(done_, &one, sizeof one) < 0) failed("events");
}

std::string Waiter::readInput() {
  std::array<char, 65536> bytes;
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count >= 0) return {bytes.data(), static_cast<std::size_t>(count)};
    if (errno != EINTR) return {};
  }
}

Waiter::Event Waiter::wait(const std::vector<int>& descriptors, Event event, Limit limit) {
  using std::chrono::milliseconds;
  if (signalNumber_ != 0) return Event::signal;
  for (;;) {
    int patience = -1;  // for ever
    if (limit) {
      const auto left = std::chrono::ceil<milliseconds>(*limit - std::chrono::steady_clock::now());
      constexpr milliseconds most = std::chrono::hours(1);
      patience = static_cast<int>(std::clamp(left, milliseconds(0), most).count());
    }
    std::vector<pollfd> watched{pollfd{signals_, POLLIN, 0}};
    for (const int descriptor : descriptors) watched.push_back({descriptor, POLLIN, 0});
    const int ready = poll(watched.data(), watched.size(), patience);
    if (ready < 0) {
      if (errno == EINTR) continue;
      failed("poll");
    }
    if (ready == 0) return Event::late;
    if (watched[0].revents != 0) {
      signalfd_siginfo info{};
      if (read(signals_, &info, sizeof info) == sizeof info) {
        signalNumber_ = static_cast<int>(info.ssi_signo);
        return Event::signal;
      }
    }
    if (ready > (watched[0].revents != 0 ? 1 : 0)) return event;
  }
}

}  // namespace quorin::ctl
