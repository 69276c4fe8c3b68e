// WaylandConnection: a connection of our own to the session's compositor, for what GDK does not
// know of. Events are taken from the main loop. Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <wayland-client.h>

#include "app/linux/GLibHandles.h"

namespace quorin {

class WaylandConnection {
 public:
  // None where no compositor answers.
  static std::unique_ptr<WaylandConnection> open();
  ~WaylandConnection();
  WaylandConnection(const WaylandConnection&) = delete;
  WaylandConnection& operator=(const WaylandConnection&) = delete;

  // True if the compositor has an extension, by its interface's name.
  bool has(const std::string& interface) const { return globals_.count(interface) > 0; }

  // The first object of an interface, in the newest version that both know; null where there is
  // none.
  wl_proxy* bind(const wl_interface& interface, std::uint32_t newestVersion);

  // Asks, and waits until all that was asked before has been answered.
  void roundTrip();
  void flush();

 private:
  struct Global {
    std::uint32_t name = 0, version = 0;
  };
  struct Disconnect {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
  };

  explicit WaylandConnection(wl_display* display);
  static void added(void*, wl_registry*, std::uint32_t, const char*, std::uint32_t);
  static void removed(void*, wl_registry*, std::uint32_t);
  static gboolean readable(int, GIOCondition, gpointer self);

  std::unique_ptr<wl_display, Disconnect> display_;
  wl_registry* registry_;
  std::map<std::string, Global> globals_;
  GSourceHandle source_;
};

}  // namespace quorin
