// fatal: the end of the process when something is wrong with the program itself.
#pragma once

#include <string_view>

namespace quorin {

// Writes one line to standard error and aborts. Any thread.
[[noreturn]] void fatal(std::string_view message);

}  // namespace quorin
