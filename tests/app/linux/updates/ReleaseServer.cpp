#include "tests/app/linux/updates/ReleaseServer.h"

#include <stdexcept>

#include "tests/fakes/ui/ChildProcess.h"

namespace quorin {

namespace {

[[noreturn]] void fail(GError* error) {
  const GErrorPtr owned(error);
  throw std::runtime_error(error->message);
}

}  // namespace

ReleaseServer::ReleaseServer() : listener_(g_socket_listener_new()), ending_(g_cancellable_new()) {
  const std::string key = folder_ / "key.pem";
  ui::ChildProcess::run({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                         "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2", "-subj",
                         "/CN=localhost", "-addext", "subjectAltName=IP:127.0.0.1,DNS:localhost",
                         "-keyout", key, "-out", authorities()});
  GError* error = nullptr;
  certificate_.reset(g_tls_certificate_new_from_files(authorities().c_str(), key.c_str(), &error));
  if (!certificate_) fail(error);
  const GObjectPtr<GSocketAddress> any(g_inet_socket_address_new_from_string("127.0.0.1", 0));
  GSocketAddress* bound = nullptr;
  if (!g_socket_listener_add_address(listener_.get(), any.get(), G_SOCKET_TYPE_STREAM,
                                     G_SOCKET_PROTOCOL_TCP, nullptr, &bound, &error)) {
    fail(error);
  }
  const GObjectPtr<GSocketAddress> owned(bound);
  port_ = g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(bound));
  thread_ = std::thread([this] { run(); });
}

ReleaseServer::~ReleaseServer() {
  g_cancellable_cancel(ending_.get());
  thread_.join();
}

std::string ReleaseServer::url(const std::string& path, const std::string& host) const {
  return "https://" + host + ":" + std::to_string(port_) + path;
}

void ReleaseServer::serve(const std::string& path, Answer answer) {
  const std::lock_guard lock(mutex_);
  answers_[path] = std::move(answer);
}

std::vector<std::string> ReleaseServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void ReleaseServer::run() {
  for (;;) {
    const GObjectPtr<GSocketConnection> connection(
        g_socket_listener_accept(listener_.get(), nullptr, ending_.get(), nullptr));
    if (connection) serveOne(connection.get());
    if (g_cancellable_is_cancelled(ending_.get())) return;
  }
}

// One request, one answer. A client that goes away is no error.
void ReleaseServer::serveOne(GSocketConnection* connection) {
  const GObjectPtr<GIOStream> stream(
      g_tls_server_connection_new(G_IO_STREAM(connection), certificate_.get(), nullptr));
  GInputStream* const input = g_io_stream_get_input_stream(stream.get());
  std::string request;
  while (request.find("\r\n\r\n") == std::string::npos) {
    char piece[4096];
    const gssize count = g_input_stream_read(input, piece, sizeof piece, ending_.get(), nullptr);
    if (count <= 0) return;
    request.append(piece, static_cast<std::size_t>(count));
  }
  const std::string path = request.substr(4, request.find(' ', 4) - 4);  // after "GET "
  Answer answer{"404 Not Found", "nothing here"};
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back(path);
    if (const auto found = answers_.find(path); found != answers_.end()) answer = found->second;
  }
  std::string text = "HTTP/1.1 " + answer.status + "\r\nConnection: close\r\n";
  if (answer.saysLength) {
    text +=
        "Content-Length: " + std::to_string(answer.length.value_or(answer.body.size())) + "\r\n";
  }
  for (const std::string& header : answer.headers) text += header + "\r\n";
  text += "\r\n" + answer.body;
  g_output_stream_write_all(g_io_stream_get_output_stream(stream.get()), text.data(), text.size(),
                            nullptr, ending_.get(), nullptr);
  if (answer.stopsThere) {
    char rest = 0;
    g_input_stream_read(input, &rest, 1, ending_.get(), nullptr);
  }
  g_io_stream_close(stream.get(), nullptr, nullptr);
}

}  // namespace quorin
