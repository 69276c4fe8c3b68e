#include "app/linux/X11Session.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <algorithm>
#include <gdk/gdkx.h>

#include "app/linux/GLibHandles.h"

namespace quorin {

namespace {

constexpr long fromPager = 2;  // the source of a request that a window manager grants

class XErrorTrap {
 public:
  explicit XErrorTrap(GdkDisplay* display) : display_(display) {
    gdk_x11_display_error_trap_push(display_);
  }
  ~XErrorTrap() { gdk_x11_display_error_trap_pop_ignored(display_); }
  XErrorTrap(const XErrorTrap&) = delete;
  XErrorTrap& operator=(const XErrorTrap&) = delete;

 private:
  GdkDisplay* display_;
};

struct XFreeMemory {
  void operator()(void* memory) const { XFree(memory); }
};
template <typename T>
using XPtr = std::unique_ptr<T, XFreeMemory>;

Atom atom(GdkDisplay* display, const char* name) {
  return gdk_x11_get_xatom_by_name_for_display(display, name);
}

}  // namespace

X11Session::X11Session(GdkDisplay* display)
    : display_(display),
      root_(gdk_screen_get_root_window(gdk_display_get_default_screen(display))) {
  GdkWindowAttr attributes{};
  attributes.event_mask = GDK_PROPERTY_CHANGE_MASK;
  attributes.wclass = GDK_INPUT_ONLY;
  attributes.window_type = GDK_WINDOW_TEMP;
  attributes.width = attributes.height = 1;
  clock_ = gdk_window_new(root_, &attributes, 0);
  gdk_window_set_events(
      root_, static_cast<GdkEventMask>(gdk_window_get_events(root_) | GDK_PROPERTY_CHANGE_MASK));
  // Of all windows: those of other applications are none that GDK knows.
  gdk_window_add_filter(nullptr, filter, this);
  watchActiveWindow();
}

X11Session::~X11Session() {
  gdk_window_remove_filter(nullptr, filter, this);
  gdk_window_destroy(clock_);
}

X11Session::WindowId X11Session::idOf(GdkWindow* window) {
  return gdk_x11_window_get_xid(window);
}

GdkFilterReturn X11Session::filter(void* xevent, GdkEvent*, gpointer data) {
  auto& self = *static_cast<X11Session*>(data);
  const auto* event = static_cast<XEvent*>(xevent);
  if (event->type != PropertyNotify) return GDK_FILTER_CONTINUE;
  const XPropertyEvent& changed = event->xproperty;
  if (changed.window == idOf(self.root_) &&
      changed.atom == atom(self.display_, "_NET_ACTIVE_WINDOW")) {
    self.requested_ = 0;
    self.watchActiveWindow();
    if (self.changed_) self.changed_();
  } else if (changed.window == self.watched_ && changed.atom == XA_WM_CLASS) {
    if (self.changed_) self.changed_();
  }
  return GDK_FILTER_CONTINUE;
}

// A window may get its class only after it has come to the front. GDK watches its own windows.
void X11Session::watchActiveWindow() {
  watched_ = activeWindow();
  if (watched_ == 0 || gdk_x11_window_lookup_for_display(display_, watched_)) return;
  const XErrorTrap trap(display_);
  XSelectInput(gdk_x11_display_get_xdisplay(display_), watched_, PropertyChangeMask);
}

// A property of 32-bit items; empty when it is absent, of another type or the window is gone.
std::vector<unsigned long> X11Session::property(WindowId id, const char* name,
                                                unsigned long type) const {
  const XErrorTrap trap(display_);
  Atom actualType = 0;
  int format = 0;
  unsigned long count = 0, rest = 0;
  unsigned char* data = nullptr;
  const int status =
      XGetWindowProperty(gdk_x11_display_get_xdisplay(display_), id, atom(display_, name), 0, 4096,
                         False, type, &actualType, &format, &count, &rest, &data);
  const XPtr<unsigned char> owner(data);
  if (status != Success || !data || actualType != type || format != 32) return {};
  const auto* items = reinterpret_cast<unsigned long*>(data);
  return {items, items + count};
}

bool X11Session::hasAtom(WindowId id, const char* name, const char* value) const {
  const std::vector<unsigned long> atoms = property(id, name, XA_ATOM);
  return std::find(atoms.begin(), atoms.end(), atom(display_, value)) != atoms.end();
}

// A window manager that died leaves its property on the root window, but not its own window.
bool X11Session::hasWindowManager() const {
  const char* check = "_NET_SUPPORTING_WM_CHECK";
  const auto told = property(idOf(root_), check, XA_WINDOW);
  return !told.empty() && property(told.front(), check, XA_WINDOW) == told;
}

X11Session::WindowId X11Session::activeWindow() const {
  const WindowId root = idOf(root_);
  if (!hasWindowManager()) return focusedTopLevel();
  const auto active = property(root, "_NET_ACTIVE_WINDOW", XA_WINDOW);
  return active.empty() ? 0 : active.front();
}

X11Session::WindowId X11Session::focusedTopLevel() const {
  const XErrorTrap trap(display_);
  Display* display = gdk_x11_display_get_xdisplay(display_);
  ::Window focused = 0;
  int revert = 0;
  XGetInputFocus(display, &focused, &revert);
  for (int level = 0; focused > PointerRoot && level < 32; ++level) {
    ::Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, focused, &root, &parent, &children, &count)) return 0;
    const XPtr<::Window> owner(children);
    if (parent == root) return focused;
    focused = parent;
  }
  return 0;
}

std::vector<X11Session::WindowId> X11Session::windowsFromTop() const {
  std::vector<WindowId> windows = property(idOf(root_), "_NET_CLIENT_LIST_STACKING", XA_WINDOW);
  std::reverse(windows.begin(), windows.end());
  return windows;
}

std::optional<X11Session::Window> X11Session::window(WindowId id) const {
  if (id == 0) return std::nullopt;
  Window found;
  {
    const XErrorTrap trap(display_);
    Display* display = gdk_x11_display_get_xdisplay(display_);
    XClassHint hint{};
    if (!XGetClassHint(display, id, &hint)) {
      XWindowAttributes attributes;
      if (!XGetWindowAttributes(display, id, &attributes)) return std::nullopt;
    }
    const XPtr<char> name(hint.res_name), windowClass(hint.res_class);
    if (windowClass) found.windowClass = windowClass.get();
    ::Window owner = 0;
    if (XGetTransientForHint(display, id, &owner)) found.transientFor = owner;
  }
  const auto process = property(id, "_NET_WM_PID", XA_CARDINAL);
  if (!process.empty()) found.processIdentifier = static_cast<int>(process.front());
  found.isUtility = hasAtom(id, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_UTILITY");
  found.isFullScreen = hasAtom(id, "_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
  return found;
}

void X11Session::send(WindowId id, const char* message, long first, long second) {
  const XErrorTrap trap(display_);
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = id;
  event.xclient.message_type = atom(display_, message);
  event.xclient.format = 32;
  event.xclient.data.l[0] = first;
  event.xclient.data.l[1] = second;
  XSendEvent(gdk_x11_display_get_xdisplay(display_), idOf(root_), False,
             SubstructureRedirectMask | SubstructureNotifyMask, &event);
}

void X11Session::requestActivation(WindowId id) {
  if (!hasWindowManager()) {
    const XErrorTrap trap(display_);
    Display* display = gdk_x11_display_get_xdisplay(display_);
    XRaiseWindow(display, id);
    XSetInputFocus(display, id, RevertToParent, CurrentTime);
    return;
  }
  requested_ = id;
  send(id, "_NET_ACTIVE_WINDOW", fromPager, static_cast<long>(gdk_x11_get_server_time(clock_)));
}

void X11Session::requestDecoration(WindowId id) {
  send(id, "_NET_REQUEST_FRAME_EXTENTS", 0, 0);
}

std::optional<Decoration> X11Session::decoration(WindowId id) const {
  const auto extents = property(id, "_NET_FRAME_EXTENTS", XA_CARDINAL);
  if (extents.size() < 4) return std::nullopt;
  return Decoration{static_cast<int>(extents[0]), static_cast<int>(extents[1]),
                    static_cast<int>(extents[2]), static_cast<int>(extents[3])};
}

void X11Session::setTransientFor(WindowId id, WindowId owner) {
  const XErrorTrap trap(display_);
  Display* display = gdk_x11_display_get_xdisplay(display_);
  if (owner != 0) {
    XSetTransientForHint(display, id, owner);
  } else {
    XDeleteProperty(display, id, XA_WM_TRANSIENT_FOR);
  }
}

}  // namespace quorin
