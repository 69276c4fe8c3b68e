#include "app/shell/EndingSignals.h"

#include <csignal>

namespace quorin {

std::vector<int> endingSignals() {
  std::vector<int> numbers{SIGINT, SIGTERM};
  struct sigaction hangUp {};
  const bool known = ::sigaction(SIGHUP, nullptr, &hangUp) == 0;
  if (known && hangUp.sa_handler != SIG_IGN) numbers.push_back(SIGHUP);
  return numbers;
}

}  // namespace quorin
