// SoupTransport: the transport over libsoup, driven by GLib's main loop. Keeps no cookies, no cache
// and no connection longer than it needs. Main thread only.
#pragma once

#include <chrono>
#include <filesystem>
#include <libsoup/soup.h>

#include "app/linux/GLibHandles.h"
#include "app/linux/updates/UpdateTransport.h"

namespace quorin {

class SoupTransport : public UpdateTransport {
 public:
  struct Options {
    std::filesystem::path authorities;  // a PEM file of who to trust; empty: as the system does
    std::chrono::seconds patience{30};  // with a server that says nothing
  };

  explicit SoupTransport(Options options) : options_(std::move(options)) {}

  std::unique_ptr<Transfer> fetch(const std::string& url, std::uint64_t limit,
                                  Handlers handlers) override;

 private:
  SoupSession* session();

  const Options options_;
  GObjectPtr<SoupSession> session_;  // made for the first file
};

}  // namespace quorin
