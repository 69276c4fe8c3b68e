// LineSocket: a socket in the file system that answers lines with lines, one a connection, on a
// thread of its own for as long as the process lives.
#pragma once

#include <functional>
#include <string>

namespace quorin::LineSocket {

using Answer = std::function<void(const std::string& line)>;  // once, from any thread

// Called on the socket's own thread.
using Handler = std::function<void(const std::string& line, const Answer& answer)>;

void listen(const std::string& path, Handler handler);

}  // namespace quorin::LineSocket
