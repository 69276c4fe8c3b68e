// LoopbackListener: a web server on this machine that answers every request with a few letters and
// remembers what was asked for.
#pragma once

#include <arpa/inet.h>
#include <condition_variable>
#include <mutex>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quorin {

class LoopbackListener {
 public:
  LoopbackListener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    ::bind(socket_, any, length);
    ::listen(socket_, 16);
    ::getsockname(socket_, any, &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
  }
  ~LoopbackListener() {
    release();
    ::shutdown(socket_, SHUT_RDWR);
    thread_.join();
    ::close(socket_);
  }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  // "http://127.0.0.1:40123/"
  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

  // Requests are answered only after release().
  void hold() { hold(true); }
  void release() { hold(false); }

  // The first lines of all requests so far; a connection without one counts as an empty line.
  std::vector<std::string> requests() {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  void hold(bool held) {
    const std::lock_guard lock(mutex_);
    held_ = held;
    changed_.notify_all();
  }

  void serve() {
    for (int peer; (peer = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
      char bytes[4096];
      const ssize_t count = ::recv(peer, bytes, sizeof bytes, 0);
      const std::string text(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
      {
        std::unique_lock lock(mutex_);
        requests_.push_back(text.substr(0, text.find('\r')));
        changed_.wait(lock, [this] { return !held_; });
      }
      const std::string reply =
          "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 4\r\n"
          "Connection: close\r\n\r\ngone";
      ::send(peer, reply.data(), reply.size(), MSG_NOSIGNAL);
      ::close(peer);
    }
  }

  int socket_;
  int port_ = 0;
  std::mutex mutex_;  // guards the next two
  bool held_ = false;
  std::vector<std::string> requests_;
  std::condition_variable changed_;
  std::thread thread_;  // last: it uses the others
};

}  // namespace quorin
