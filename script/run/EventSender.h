// Sends one Apple event and turns the answer into a value or a script error with AppleScript's
// numbers and texts. Used on the script's thread.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "kit/value/AppleEvent.h"
#include "script/terms/Application.h"
#include "script/terms/Terminology.h"
#include "script/values/Value.h"

namespace quorin::script {

class EventSender {
 public:
  static constexpr std::chrono::milliseconds defaultTimeout = std::chrono::minutes(2);

  // The innermost `with timeout` and `ignoring application responses`; the interpreter changes and
  // restores them.
  std::chrono::milliseconds timeout = defaultTimeout;
  bool ignoresResponses = false;

  // The answer's value, or none when there was an answer without one. Throws Failure with the
  // message "<application> got an error: ...".
  std::optional<Value> send(Application& application, const AppleEvent& event) const;
};

// What AppleScript says of an error that came without a text.
std::string standardMessage(int number, const AppleEvent& event, const AppleEventError& error,
                            Application& application);

}  // namespace quorin::script
