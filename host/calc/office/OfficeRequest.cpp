#include "host/calc/office/OfficeRequest.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quorin::host::calc {
namespace {

using namespace std::string_literals;

// What both sides say, each with a null at its end.
const std::string invitation = "InternalIPC::SendArguments\0"s;
const std::string request = "InternalIPC::Arguments"s;
const std::string confirmation = "InternalIPC::ProcessingDone\0"s;
constexpr char noWorkingFolder = '0';

class Connection {
 public:
  Connection(const std::filesystem::path& path, std::chrono::steady_clock::time_point deadline)
      : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
        deadline_(deadline) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    if (::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      failure_ = errno;
    }
  }
  ~Connection() { ::close(descriptor_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool isUnreachable() const { return failure_ == ENOENT || failure_ == EACCES; }

  OfficeAnswer expect(const std::string& text) {
    std::string received;
    while (received.size() < text.size()) {
      if (!ready(POLLIN)) return OfficeAnswer::noAnswer;
      char buffer[64];
      const std::size_t wanted = std::min(sizeof buffer, text.size() - received.size());
      const ssize_t count = ::recv(descriptor_, buffer, wanted, 0);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return OfficeAnswer::noAnswer;
      received.append(buffer, static_cast<std::size_t>(count));
      if (!text.starts_with(received)) return OfficeAnswer::noAnswer;
    }
    return OfficeAnswer::done;
  }

  OfficeAnswer send(const std::string& text) {
    for (std::size_t sent = 0; sent < text.size();) {
      if (!ready(POLLOUT)) return OfficeAnswer::noAnswer;
      const ssize_t count =
          ::send(descriptor_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return OfficeAnswer::noAnswer;
      sent += static_cast<std::size_t>(count);
    }
    return OfficeAnswer::done;
  }

 private:
  bool ready(short events) const {
    for (;;) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(
          deadline_ - std::chrono::steady_clock::now());
      if (left.count() <= 0) return false;
      pollfd state{descriptor_, events, 0};
      const int count = ::poll(&state, 1, static_cast<int>(left.count()));
      if (count > 0) return true;
      if (count < 0 && errno != EINTR) return false;
    }
  }

  const int descriptor_;
  const std::chrono::steady_clock::time_point deadline_;
  int failure_ = 0;
};

// Each argument after a comma; commas and backslashes of its own are marked.
std::string textOf(const std::vector<std::string>& arguments) {
  std::string text = request + noWorkingFolder;
  for (const std::string& argument : arguments) {
    text += ',';
    for (const char one : argument) {
      if (one == ',' || one == '\\') text += '\\';
      text += one;
    }
  }
  return text + '\0';
}

}  // namespace

OfficeAnswer handToOffice(const std::filesystem::path& socket,
                          const std::vector<std::string>& arguments,
                          std::chrono::steady_clock::time_point deadline) {
  Connection office(socket, deadline);
  if (office.isUnreachable()) return OfficeAnswer::unreachable;
  OfficeAnswer answer = office.expect(invitation);
  if (answer == OfficeAnswer::done) answer = office.send(textOf(arguments));
  if (answer == OfficeAnswer::done) answer = office.expect(confirmation);
  return answer;
}

}  // namespace quorin::host::calc
