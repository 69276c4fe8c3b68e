// ContractWorld: what the contract suites of the shell's ports need beside the ports themselves:
// turns of the main loop, and the user's hands. Each platform's test program defines the functions
// below for its own desktop and links the suites of the ports that its platform has; the adapters
// come from makePlatform(). Main thread only.
#pragma once

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <string>

#include "app/shell/ports/AppPlatform.h"
#include "kit/platform/Folders.h"

namespace quorin::contract {

// The one platform of the program.
AppPlatform& platform();

// This user's folders, as the program knows them.
Folders& folders();

// Runs the main loop until something has happened, or for some milliseconds.
void turn();

// The main thread does something else for so long, and its loop does not run.
void stall(std::chrono::milliseconds time);

// The user presses a registered combination.
void pressHotKey(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers);

// The user presses the button of this title as soon as an alert shows it.
void pressAlertButtonSoon(const std::string& title);

// The user presses the close button of the window, which is on the screen.
void pressCloseButton(PanelWindow& window);

// What Defaults keeps under the key is forgotten, so that a test leaves nothing.
void forgetDefault(const std::string& key);

class PortContract : public testing::Test {
 protected:
  // The platform's own time: a fake's goes on by itself as little as the fake does.
  static std::chrono::steady_clock::time_point now() { return platform().clock().steadyNow(); }

  // False when the condition does not hold within ten seconds.
  static bool waitUntil(const std::function<bool()>& condition) {
    const auto end = now() + std::chrono::seconds(10);
    while (!condition()) {
      if (now() > end) return false;
      turn();
    }
    return true;
  }

  // Where the absence of something is to be shown.
  static void runFor(std::chrono::milliseconds time) {
    const auto end = now() + time;
    while (now() < end) turn();
  }
};

}  // namespace quorin::contract
