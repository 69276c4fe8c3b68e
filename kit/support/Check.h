// check: what a caller promised. A broken promise is a fault of the program and stops the process.
#pragma once

#include <string_view>

#include "kit/platform/Fatal.h"

namespace quorin {

inline void check(bool holds, std::string_view otherwise) {
  if (!holds) fatal(otherwise);
}

}  // namespace quorin
