#include "app/linux/ForeignToplevels.h"

#include <array>
#include <cstdint>

namespace quorin::foreignToplevels {

extern const wl_interface handleInterface;

namespace {

// The interfaces of each message's arguments; null for what is no object.
const std::array<const wl_interface*, 5> none{};
const std::array<const wl_interface*, 1> aHandle{&handleInterface};
const std::array<const wl_interface*, 1> aSeat{&wl_seat_interface};
const std::array<const wl_interface*, 1> anOutput{&wl_output_interface};
const std::array<const wl_interface*, 5> aRectangle{&wl_surface_interface, nullptr, nullptr,
                                                    nullptr, nullptr};

wl_message message(const char* name, const char* signature, const wl_interface* const* types) {
  return {name, signature, const_cast<const wl_interface**>(types)};
}

const std::array managerRequests{message("stop", "", none.data())};
const std::array managerEvents{message("toplevel", "n", aHandle.data()),
                               message("finished", "", none.data())};

constexpr std::uint32_t activateRequest = 4, destroyRequest = 7;
const std::array handleRequests{message("set_maximized", "", none.data()),
                                message("unset_maximized", "", none.data()),
                                message("set_minimized", "", none.data()),
                                message("unset_minimized", "", none.data()),
                                message("activate", "o", aSeat.data()),
                                message("close", "", none.data()),
                                message("set_rectangle", "oiiii", aRectangle.data()),
                                message("destroy", "", none.data()),
                                message("set_fullscreen", "2?o", anOutput.data()),
                                message("unset_fullscreen", "2", none.data())};
const std::array handleEvents{message("title", "s", none.data()),
                              message("app_id", "s", none.data()),
                              message("output_enter", "o", anOutput.data()),
                              message("output_leave", "o", anOutput.data()),
                              message("state", "a", none.data()),
                              message("done", "", none.data()),
                              message("closed", "", none.data()),
                              message("parent", "3?o", aHandle.data())};

template <typename Messages>
int count(const Messages& messages) {
  return static_cast<int>(messages.size());
}

}  // namespace

const wl_interface handleInterface{"zwlr_foreign_toplevel_handle_v1",
                                   static_cast<int>(newestVersion),
                                   count(handleRequests),
                                   handleRequests.data(),
                                   count(handleEvents),
                                   handleEvents.data()};
const wl_interface managerInterface{managerName,
                                    static_cast<int>(newestVersion),
                                    count(managerRequests),
                                    managerRequests.data(),
                                    count(managerEvents),
                                    managerEvents.data()};

void activate(wl_proxy* handle, wl_seat* seat) {
  wl_proxy_marshal(handle, activateRequest, seat);
}

void destroy(wl_proxy* handle) {
  wl_proxy_marshal(handle, destroyRequest);
  wl_proxy_destroy(handle);
}

}  // namespace quorin::foreignToplevels
