// Invocation: what the program's arguments ask for.
#pragma once

#include <variant>

#include "app/linux/ControlRequest.h"

namespace quorin {

struct Invocation {
  bool show = false;
  ControlRequest request;
};

// Instead of it the status to end with, after help, the version or what is wrong has been printed.
std::variant<Invocation, int> parseInvocation(int argc, const char* const* argv);

}  // namespace quorin
