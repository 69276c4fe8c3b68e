#include "app/linux/WaylandWindowList.h"

#include <algorithm>
#include <span>

#include "app/linux/ForeignToplevels.h"

namespace quorin {

namespace protocol = foreignToplevels;

// What a window is told in pieces counts once the compositor says that it is done.
struct WaylandWindowList::Events {
  static Window& of(void* data) { return *static_cast<Window*>(data); }

  static void toplevel(void* data, wl_proxy*, wl_proxy* handle) {
    static const protocol::HandleEvents events{title, appId, outputs, outputs,
                                               state, done,  closed,  parent};
    auto& list = *static_cast<WaylandWindowList*>(data);
    Window& window = list.windows_.emplace_back();
    window.list = &list;
    window.handle = handle;
    window.told.id = ++list.lastId_;
    // The C library calls each function with the arguments of its event.
    wl_proxy_add_listener(
        handle,
        reinterpret_cast<void (**)()>(const_cast<protocol::HandleEvents*>(&events)),  // NOLINT
        &window);
  }
  static void finished(void*, wl_proxy*) {}

  static void title(void* data, wl_proxy*, const char* text) { of(data).told.title = text; }
  static void appId(void* data, wl_proxy*, const char* id) { of(data).told.program = id; }
  static void outputs(void*, wl_proxy*, wl_output*) {}
  static void state(void* data, wl_proxy*, wl_array* states) {
    const std::span all(static_cast<const std::uint32_t*>(states->data),
                        states->size / sizeof(std::uint32_t));
    of(data).told.isActive = std::find(all.begin(), all.end(), protocol::activated) != all.end();
  }
  static void done(void* data, wl_proxy*) {
    of(data).complete = true;
    of(data).list->tell();
  }
  static void closed(void* data, wl_proxy* handle) {
    WaylandWindowList& list = *of(data).list;
    protocol::destroy(handle);
    list.windows_.remove_if([handle](const Window& one) { return one.handle == handle; });
    list.tell();
  }
  static void parent(void* data, wl_proxy*, wl_proxy* parent) {
    of(data).told.owner = 0;
    for (const Window& one : of(data).list->windows_) {
      if (one.handle == parent) of(data).told.owner = one.told.id;
    }
  }
};

std::unique_ptr<WaylandWindowList> WaylandWindowList::open(WaylandConnection& connection) {
  wl_proxy* const manager = connection.bind(protocol::managerInterface, protocol::newestVersion);
  if (!manager) return nullptr;
  return std::unique_ptr<WaylandWindowList>(new WaylandWindowList(connection, manager));
}

WaylandWindowList::WaylandWindowList(WaylandConnection& connection, wl_proxy* manager)
    : connection_(connection),
      manager_(manager),
      seat_(reinterpret_cast<wl_seat*>(connection.bind(wl_seat_interface, 1))) {
  static const protocol::ManagerEvents events{Events::toplevel, Events::finished};
  wl_proxy_add_listener(
      manager_,
      reinterpret_cast<void (**)()>(const_cast<protocol::ManagerEvents*>(&events)),  // NOLINT
      this);
  connection_.roundTrip();  // the windows
  connection_.roundTrip();  // what they are
}

WaylandWindowList::~WaylandWindowList() {
  for (const Window& one : windows_) protocol::destroy(one.handle);
  if (seat_) wl_seat_destroy(seat_);
  wl_proxy_destroy(manager_);
}

void WaylandWindowList::tell() const {
  if (changed_) changed_();
}

std::vector<ListedWindow> WaylandWindowList::windows() const {
  std::vector<ListedWindow> complete;
  for (const Window& one : windows_) {
    if (one.complete) complete.push_back(one.told);
  }
  return complete;
}

void WaylandWindowList::activate(std::uint32_t id) {
  if (!seat_) return;
  for (const Window& one : windows_) {
    if (one.told.id == id) protocol::activate(one.handle, seat_);
  }
  connection_.flush();
}

}  // namespace quorin
