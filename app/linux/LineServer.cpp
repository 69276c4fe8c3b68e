#include "app/linux/LineServer.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <gio/gunixsocketaddress.h>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace quorin {

namespace {

constexpr int backlog = 8;

// A descriptor that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }
  int release() { return std::exchange(number_, -1); }

 private:
  int number_;
};

// The address of a socket file. Such addresses hold about a hundred bytes; reached through its open
// folder, every path is short enough.
sockaddr_un addressOf(const Descriptor& folder, const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text =
      "/proc/self/fd/" + std::to_string(folder.number()) + "/" + path.filename().string();
  std::strncpy(address.sun_path, text.c_str(), sizeof address.sun_path - 1);
  return address;
}

Descriptor openFolder(const std::filesystem::path& path) {
  return Descriptor(open(path.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

}  // namespace

// One connection. It owns itself: pending reads and answers hold it.
struct LineServer::Client : std::enable_shared_from_this<Client> {
  Client(GSocketConnection* given, std::size_t longest, Handler handle)
      : connection(G_SOCKET_CONNECTION(g_object_ref(given))),
        longestLine(longest),
        handler(std::move(handle)) {}

  void read() {
    GInputStream* input = g_io_stream_get_input_stream(G_IO_STREAM(connection.get()));
    g_input_stream_read_async(input, buffer, sizeof buffer, G_PRIORITY_DEFAULT, nullptr, haveRead,
                              new std::shared_ptr<Client>(shared_from_this()));
  }

  static void haveRead(GObject* input, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::shared_ptr<Client>> held(
        static_cast<std::shared_ptr<Client>*>(data));
    Client& self = **held;
    const gssize count = g_input_stream_read_finish(G_INPUT_STREAM(input), result, nullptr);
    if (count <= 0) return;
    self.received.append(self.buffer, static_cast<std::size_t>(count));
    for (std::size_t end; (end = self.received.find('\n')) != std::string::npos;) {
      const std::string line = self.received.substr(0, end);
      self.received.erase(0, end + 1);
      self.handler(line, [client = *held](const std::string& answer) { client->write(answer); });
    }
    if (self.received.size() <= self.longestLine) self.read();
  }

  void write(const std::string& line) {
    GOutputStream* output = g_io_stream_get_output_stream(G_IO_STREAM(connection.get()));
    auto* text = new std::string(line + "\n");
    g_output_stream_write_all_async(
        output, text->data(), text->size(), G_PRIORITY_DEFAULT, nullptr,
        [](GObject* stream, GAsyncResult* result, gpointer data) {
          g_output_stream_write_all_finish(G_OUTPUT_STREAM(stream), result, nullptr, nullptr);
          delete static_cast<std::string*>(data);
        },
        text);
  }

  const GObjectPtr<GSocketConnection> connection;
  const std::size_t longestLine;
  const Handler handler;
  char buffer[4096];
  std::string received;
};

LineServer::LineServer(std::filesystem::path path, std::size_t longestLine, Handler handler)
    : path_(std::move(path)),
      longestLine_(longestLine),
      handler_(std::move(handler)),
      service_(g_socket_service_new()) {
  const Descriptor folder = openFolder(path_);
  Descriptor listening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  // Under its own name only once it listens: who finds it there is never refused.
  const std::filesystem::path made = path_.string() + ".new";
  unlink(made.c_str());
  const sockaddr_un address = addressOf(folder, made);
  const mode_t mask = umask(S_IRWXG | S_IRWXO);
  const bool bound =
      bind(listening.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  umask(mask);
  if (!bound || listen(listening.number(), backlog) != 0 ||
      rename(made.c_str(), path_.c_str()) != 0) {
    throw std::runtime_error("cannot listen on " + path_.string() + ": " + std::strerror(errno));
  }
  GError* error = nullptr;
  const GObjectPtr<GSocket> socket(g_socket_new_from_fd(listening.number(), &error));
  const GErrorPtr owned(error);
  if (!socket) throw std::runtime_error(error->message);
  listening.release();
  g_socket_listener_add_socket(G_SOCKET_LISTENER(service_.get()), socket.get(), nullptr, nullptr);
  g_signal_connect(service_.get(), "incoming", G_CALLBACK(incoming), this);
  g_socket_service_start(service_.get());
}

LineServer::~LineServer() {
  g_signal_handlers_disconnect_by_data(service_.get(), this);
  g_socket_service_stop(service_.get());
  g_socket_listener_close(G_SOCKET_LISTENER(service_.get()));
  unlink(path_.c_str());
}

gboolean LineServer::incoming(GSocketService*, GSocketConnection* connection, GObject*,
                              gpointer data) {
  auto& self = *static_cast<LineServer*>(data);
  std::make_shared<Client>(connection, self.longestLine_, self.handler_)->read();
  return TRUE;
}

std::string LineServer::ask(const std::filesystem::path& path, const std::string& line,
                            std::chrono::milliseconds patience) {
  const Descriptor folder = openFolder(path);
  const Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address = addressOf(folder, path);
  const std::string request = line + "\n";
  if (connect(connection.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
          0 ||
      send(connection.number(), request.data(), request.size(), MSG_NOSIGNAL) !=
          static_cast<ssize_t>(request.size())) {
    return {};
  }
  std::string answer;
  const auto end = std::chrono::steady_clock::now() + patience;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    pollfd ready{connection.number(), POLLIN, 0};
    char buffer[256];
    if (left.count() <= 0 || poll(&ready, 1, static_cast<int>(left.count())) != 1) return {};
    const ssize_t count = recv(connection.number(), buffer, sizeof buffer, 0);
    if (count <= 0) return {};
    answer.append(buffer, static_cast<std::size_t>(count));
    if (const auto newline = answer.find('\n'); newline != std::string::npos) {
      return answer.substr(0, newline);
    }
  }
}

}  // namespace quorin
