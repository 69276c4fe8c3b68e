#include "app/linux/WaylandConnection.h"

#include <algorithm>
#include <cstdint>
#include <glib-unix.h>

namespace quorin {

std::unique_ptr<WaylandConnection> WaylandConnection::open() {
  wl_display* const display = wl_display_connect(nullptr);
  if (!display) return nullptr;
  return std::unique_ptr<WaylandConnection>(new WaylandConnection(display));
}

WaylandConnection::WaylandConnection(wl_display* display)
    : display_(display), registry_(wl_display_get_registry(display)) {
  static const wl_registry_listener listener{added, removed};
  wl_registry_add_listener(registry_, &listener, this);
  roundTrip();
  source_.reset(g_unix_fd_add(wl_display_get_fd(display),
                              static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), readable,
                              this));
}

WaylandConnection::~WaylandConnection() {
  wl_registry_destroy(registry_);
}

void WaylandConnection::added(void* data, wl_registry*, std::uint32_t name, const char* interface,
                              std::uint32_t version) {
  static_cast<WaylandConnection*>(data)->globals_.try_emplace(interface, Global{name, version});
}

void WaylandConnection::removed(void* data, wl_registry*, std::uint32_t name) {
  auto& self = *static_cast<WaylandConnection*>(data);
  std::erase_if(self.globals_, [name](const auto& one) { return one.second.name == name; });
}

wl_proxy* WaylandConnection::bind(const wl_interface& interface, std::uint32_t newestVersion) {
  const auto found = globals_.find(interface.name);
  if (found == globals_.end()) return nullptr;
  return static_cast<wl_proxy*>(wl_registry_bind(registry_, found->second.name, &interface,
                                                 std::min(found->second.version, newestVersion)));
}

void WaylandConnection::roundTrip() {
  wl_display_roundtrip(display_.get());
}

void WaylandConnection::flush() {
  wl_display_flush(display_.get());
}

// A compositor that has gone has ended the session.
gboolean WaylandConnection::readable(int, GIOCondition, gpointer data) {
  auto& self = *static_cast<WaylandConnection*>(data);
  if (wl_display_dispatch(self.display_.get()) >= 0) {
    self.flush();
    return G_SOURCE_CONTINUE;
  }
  self.source_.forget();
  return G_SOURCE_REMOVE;
}

}  // namespace quorin
