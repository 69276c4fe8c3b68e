// ScriptRunner: the port through which the Excel call thread compiles the handler library once and
// sends it handler calls. It is made, used and destroyed on the call thread alone and never throws:
// failures come back as values.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kit/value/AppleEvent.h"
#include "kit/value/CallTerms.h"

namespace quorin {

// What a script system tells about a failure; either half may be missing.
struct ScriptErrorInfo {
  std::optional<int> number;
  std::optional<std::string> message;
};

struct ScriptReply {
  std::optional<AppleEventDescriptor> result;
  std::optional<ScriptErrorInfo> error;
};

class ScriptRunner {
 public:
  virtual ~ScriptRunner() = default;

  // Compiles the library. Gives the error, or nothing when it compiled.
  virtual std::optional<ScriptErrorInfo> compile(std::string_view source) = 0;

  // The terms of the next event that is executed, and of no other. What a script system has no use
  // for it ignores.
  virtual void prepare(const CallTerms&) {}

  // Runs one 'ascr'/'psbr' event ("snam": handler name, "----": argument list) to its end.
  virtual ScriptReply execute(const AppleEvent& event) = 0;
};

// Runs work on the call thread, after what was posted before it and never during a call.
using CallThreadPost = std::function<void(std::function<void()>)>;
using ScriptRunnerFactory = std::function<std::unique_ptr<ScriptRunner>(CallThreadPost)>;

}  // namespace quorin
