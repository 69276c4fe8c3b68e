#include "tests/macos/program/LineSocket.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quorin::LineSocket {
namespace {

std::string readLine(int client) {
  std::string line;
  char bytes[4096];
  while (line.find('\n') == std::string::npos) {
    const ssize_t count = ::recv(client, bytes, sizeof bytes, 0);
    if (count <= 0) return {};
    line.append(bytes, static_cast<std::size_t>(count));
  }
  return line.substr(0, line.find('\n'));
}

void answer(int client, const std::string& line) {
  const std::string whole = line + "\n";
  std::size_t sent = 0;
  while (sent < whole.size()) {
    const ssize_t count = ::send(client, whole.data() + sent, whole.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) break;
    sent += static_cast<std::size_t>(count);
  }
  ::close(client);
}

}  // namespace

void listen(const std::string& path, Handler handler) {
  const int server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  // It has its name once somebody listens.
  const std::string unheard = path + ".new";
  unheard.copy(address.sun_path, sizeof address.sun_path - 1);
  if (::bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(server, 8) != 0 || ::rename(unheard.c_str(), path.c_str()) != 0)
    throw std::runtime_error("cannot listen at " + path);
  std::thread([server, handler = std::move(handler)] {
    for (int client; (client = ::accept4(server, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
      const std::string line = readLine(client);
      if (line.empty()) {
        ::close(client);
      } else {
        handler(line, [client](const std::string& text) { answer(client, text); });
      }
    }
  }).detach();
}

}  // namespace quorin::LineSocket
