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
  // False when the condition does not hold within ten seconds.
  static bool waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      turn();
    }
    return true;
  }

  // Where the absence of something is to be shown.
  static void runFor(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) turn();
  }
};

}  // namespace quorin::contract
