#include "tests/macos/page_engine/Wire.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>

namespace quorin::wire {
namespace {

bool sendAll(int socket, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t sent = ::send(socket, bytes, count, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes += sent;
    count -= static_cast<std::size_t>(sent);
  }
  return true;
}

bool receiveAll(int socket, char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t got = ::recv(socket, bytes, count, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    bytes += got;
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

}  // namespace

bool send(int socket, std::string_view word, std::string_view text) {
  const auto length = static_cast<std::uint32_t>(word.size() + 1 + text.size());
  std::string bytes(sizeof length, '\0');
  std::memcpy(bytes.data(), &length, sizeof length);
  bytes.append(word).append(" ").append(text);
  return sendAll(socket, bytes.data(), bytes.size());
}

std::optional<Message> receive(int socket) {
  std::uint32_t length = 0;
  if (!receiveAll(socket, reinterpret_cast<char*>(&length), sizeof length)) return std::nullopt;
  Message message;
  message.text.resize(length);
  if (!receiveAll(socket, message.text.data(), length)) return std::nullopt;
  message.word = takeWord(message.text);
  return message;
}

std::string takeWord(std::string& text) {
  const std::size_t blank = text.find(' ');
  std::string word = text.substr(0, blank);
  text.erase(0, blank == std::string::npos ? text.size() : blank + 1);
  return word;
}

}  // namespace quorin::wire
