// Link: one end of the line between a test and the process that it kills. A message is JSON text
// and arrives whole or not at all.
#pragma once

#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"

namespace quorin::crash {

class Link {
 public:
  explicit Link(int socket) : socket_(socket) {}
  Link(Link&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}
  Link& operator=(Link&& other) noexcept {
    std::swap(socket_, other.socket_);
    return *this;
  }
  ~Link() {
    if (socket_ >= 0) ::close(socket_);
  }

  int socket() const { return socket_; }

  // False when nobody is there any more.
  bool send(const JSONValue& message) const {
    const std::string text = Marshal::encode(message);
    ssize_t sent;
    do {
      sent = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(text.size());
  }

  // Waits for the next one; none when nobody is there any more.
  std::optional<JSONValue> receive() {
    buffer_.resize(1 << 20);
    ssize_t got;
    do {
      got = ::recv(socket_, buffer_.data(), buffer_.size(), 0);
    } while (got < 0 && errno == EINTR);
    if (got <= 0) return std::nullopt;
    ParsedJSON parsed = parseJSON(std::string_view(buffer_).substr(0, static_cast<size_t>(got)));
    if (!parsed) throw std::runtime_error("no message: " + parsed.error);
    return std::move(parsed.value);
  }

  // A message with one end of another line, which stays open here.
  bool sendWith(const Link& other, const JSONValue& message) const {
    std::string text = Marshal::encode(message);
    iovec data{text.data(), text.size()};
    Room room{};
    msghdr header = headerOf(data, room);
    cmsghdr* const control = CMSG_FIRSTHDR(&header);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(control), &other.socket_, sizeof(int));
    return ::sendmsg(socket_, &header, MSG_NOSIGNAL) >= 0;
  }

  // The next one with what came with it.
  std::optional<std::pair<JSONValue, Link>> receiveWith() {
    std::string text(1 << 16, 0);
    iovec data{text.data(), text.size()};
    Room room{};
    msghdr header = headerOf(data, room);
    const ssize_t got = ::recvmsg(socket_, &header, MSG_CMSG_CLOEXEC);
    const cmsghdr* const control = got > 0 ? CMSG_FIRSTHDR(&header) : nullptr;
    if (!control) return std::nullopt;
    int other = -1;
    std::memcpy(&other, CMSG_DATA(control), sizeof(int));
    text.resize(static_cast<std::size_t>(got));
    return std::pair(parseJSON(text).value.value(), Link(other));
  }

  // The two ends of a new line. They are not inherited by other programs unless that is changed.
  static std::pair<Link, Link> pair() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
      throw std::runtime_error("no line can be made");
    return {Link(ends[0]), Link(ends[1])};
  }

 private:
  struct Room {
    alignas(cmsghdr) char bytes[CMSG_SPACE(sizeof(int))];
  };
  static msghdr headerOf(iovec& data, Room& room) {
    msghdr header{};
    header.msg_iov = &data;
    header.msg_iovlen = 1;
    header.msg_control = room.bytes;
    header.msg_controllen = sizeof room.bytes;
    return header;
  }

  int socket_;
  std::string buffer_;
};

}  // namespace quorin::crash
