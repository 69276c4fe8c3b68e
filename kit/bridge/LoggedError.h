// LoggedError: an error as the log may hold it. The log goes into reports of problems, so no value
// of a cell and no formula gets into it, and errors of the script system quote what they are about:
// Can't make "12 Main Street" into type real. Names and addresses stay. Any thread.
#pragma once

#include <exception>
#include <string>

namespace quorin {

// What the error says, with "…" for each value that it quotes. Only what a script tells is changed.
std::string loggedText(const std::exception& error);

}  // namespace quorin
