// The messages of the extension "wlr-foreign-toplevel-management", up to its version 3: by it
// compositors of the wlroots family list the windows of all programs. No package that Quorin is
// built with describes them.
#pragma once

#include <cstdint>
#include <wayland-client.h>

namespace quorin::foreignToplevels {

constexpr const char* managerName = "zwlr_foreign_toplevel_manager_v1";
constexpr std::uint32_t newestVersion = 3;

extern const wl_interface managerInterface;

// The events in the order of the protocol. The first two arguments of each are the listener's data
// and the object.
struct ManagerEvents {
  void (*toplevel)(void*, wl_proxy*, wl_proxy* handle);
  void (*finished)(void*, wl_proxy*);
};

struct HandleEvents {
  void (*title)(void*, wl_proxy*, const char*);
  void (*appId)(void*, wl_proxy*, const char*);
  void (*outputEnter)(void*, wl_proxy*, wl_output*);
  void (*outputLeave)(void*, wl_proxy*, wl_output*);
  void (*state)(void*, wl_proxy*, wl_array* states);
  void (*done)(void*, wl_proxy*);
  void (*closed)(void*, wl_proxy*);
  void (*parent)(void*, wl_proxy*, wl_proxy* parent);  // since version 3; may be null
};

constexpr std::uint32_t activated = 2;  // of the states

void activate(wl_proxy* handle, wl_seat* seat);
void destroy(wl_proxy* handle);

}  // namespace quorin::foreignToplevels
