// Waiting for what another process does, in tests.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace quorin {

// True as soon as the condition holds, false if it does not within a minute.
inline bool eventually(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace quorin
