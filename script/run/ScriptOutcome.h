// What a call of a script came to, and what it may use until then. Plain values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "kit/value/AppleEvent.h"

namespace quorin::script {

struct ScriptError {
  int number = 0;
  std::string message;
  bool operator==(const ScriptError&) const = default;
};

// Exactly one of error and "finished"; a handler that finished may still have no value.
struct ScriptOutcome {
  std::optional<AppleEventDescriptor> result;
  std::optional<ScriptError> error;
};

// What a running script may use before it is stopped. The stack and the depth of data end in
// -2706, the size of one text or list in -108, steps in -128, as if the user had cancelled.
struct ScriptLimits {
  std::uint64_t steps = 0;  // statements and expressions of one call; 0: no limit
  std::size_t stackBytes = std::size_t{2} << 20;
  std::size_t textBytes = std::size_t{256} << 20;
  std::size_t listItems = std::size_t{16} << 20;
};

}  // namespace quorin::script
