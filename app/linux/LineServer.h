// LineServer: a socket in the file system that answers lines with lines, for this user alone. It
// listens from its construction on; clients are served by the main loop. Main thread only.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <gio/gio.h>
#include <string>

#include "app/linux/GLibHandles.h"

namespace quorin {

class LineServer {
 public:
  // Called with one line of a client; answers now or later, once.
  using Answer = std::function<void(const std::string& line)>;
  using Handler = std::function<void(const std::string& line, Answer answer)>;

  // A socket that a process left behind is replaced. Throws std::runtime_error when the socket
  // cannot be made; lines longer than `longestLine` end their connection.
  LineServer(std::filesystem::path path, std::size_t longestLine, Handler handler);
  ~LineServer();
  LineServer(const LineServer&) = delete;
  LineServer& operator=(const LineServer&) = delete;

  // As a client of another process: sends a line and gives the answer; empty when nobody listens,
  // when the other one hangs up, and when it has not answered in that time. Only then may it still
  // carry the line out.
  static std::string ask(const std::filesystem::path& path, const std::string& line,
                         std::chrono::milliseconds patience);

 private:
  struct Client;
  static gboolean incoming(GSocketService*, GSocketConnection* connection, GObject*, gpointer self);

  const std::filesystem::path path_;
  const std::size_t longestLine_;
  const Handler handler_;
  GObjectPtr<GSocketService> service_;
};

}  // namespace quorin
