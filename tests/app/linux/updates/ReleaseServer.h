// ReleaseServer: an https server on the loopback interface, with a certificate of its own made when
// it starts. It answers each path as it was told to, however wrong that is, on a thread of its own.
#pragma once

#include <gio/gio.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/linux/GLibHandles.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {

class ReleaseServer {
 public:
  // What is sent, byte by byte.
  struct Answer {
    std::string status = "200 OK";
    std::string body;
    std::vector<std::string> headers{};   // beside Content-Length
    std::optional<std::size_t> length{};  // in Content-Length, where it is not the body's
    bool saysLength = true;
    bool stopsThere = false;  // sends no more, but keeps the connection until the client gives up
  };

  ReleaseServer();
  ~ReleaseServer();
  ReleaseServer(const ReleaseServer&) = delete;
  ReleaseServer& operator=(const ReleaseServer&) = delete;

  std::filesystem::path authorities() const { return folder_ / "certificate.pem"; }
  std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;

  void serve(const std::string& path, Answer answer);
  void serveFile(const std::string& path, const std::string& body) {
    serve(path, Answer{"200 OK", body});
  }

  // The paths that were asked for so far, in order.
  std::vector<std::string> requests() const;

 private:
  void run();
  void serveOne(GSocketConnection* connection);

  const TemporaryFolder folder_;
  GObjectPtr<GTlsCertificate> certificate_;
  GObjectPtr<GSocketListener> listener_;
  GObjectPtr<GCancellable> ending_;
  guint16 port_ = 0;
  mutable std::mutex mutex_;
  std::map<std::string, Answer> answers_;
  std::vector<std::string> requests_;
  std::thread thread_;  // last: it uses everything above
};

}  // namespace quorin
