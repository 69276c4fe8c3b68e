// Waiter: what the main thread of quorinctl waits for: input, the end of work on another thread,
// and the signals that ask it to end. Those are blocked from construction on, also in every thread
// started later, so that none ends the process before it has tidied up.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace quorin::ctl {

class Waiter {
 public:
  enum class Event { input, done, signal, late };
  using Limit = std::optional<std::chrono::steady_clock::time_point>;

  Waiter();  // throws std::system_error
  ~Waiter();
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  Event waitForInput();  // input (also its end), or a signal
  // Input at one of the descriptors at least (also its end), a signal, or late.
  Event waitForInput(const std::vector<int>& descriptors, Limit limit);
  // Done, or a signal, or late once the limit has passed.
  Event waitForDone(Limit limit = std::nullopt);
  void waitForDoneAlone();  // whatever signals come

  // Ends one waitForDone. Any thread.
  void done();

  // Reads what there is of standard input. Empty at its end.
  static std::string readInput();

  // The signal that came; 0 when none did.
  int signalNumber() const { return signalNumber_; }

 private:
  Event wait(const std::vector<int>& descriptors, Event event, Limit limit);

  int signals_ = -1;
  int done_ = -1;
  int signalNumber_ = 0;
};

}  // namespace quorin::ctl
