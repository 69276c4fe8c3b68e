#include "app/linux/X11UserInput.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <array>
#include <gdk/gdkx.h>
#include <glib-unix.h>

namespace quorin {

namespace {

bool isKey(int event) {
  return event == XI_RawKeyPress || event == XI_RawKeyRelease;
}

// Four buttons of X11 are the wheel.
bool isWheel(int button) {
  return button >= 4 && button <= 7;
}

}  // namespace

X11UserInput::X11UserInput(GdkDisplay* display)
    : connection_(XOpenDisplay(gdk_display_get_name(display))) {
  Display* const connection = connection_.get();
  int firstEvent = 0, firstError = 0, major = 2, minor = 2;
  if (!connection ||
      !XQueryExtension(connection, "XInputExtension", &extension_, &firstEvent, &firstError) ||
      XIQueryVersion(connection, &major, &minor) != Success) {
    return;
  }
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> wanted{};
  XISetMask(wanted.data(), XI_RawKeyPress);
  XISetMask(wanted.data(), XI_RawKeyRelease);
  XISetMask(wanted.data(), XI_RawButtonPress);
  XISetMask(wanted.data(), XI_RawButtonRelease);
  XIEventMask mask{XIAllMasterDevices, static_cast<int>(wanted.size()), wanted.data()};
  XISelectEvents(connection, DefaultRootWindow(connection), &mask, 1);
  XFlush(connection);
  source_.reset(g_unix_fd_add(ConnectionNumber(connection), G_IO_IN, readable, this));
}

void X11UserInput::Close::operator()(Display* connection) const {
  XCloseDisplay(connection);
}

gboolean X11UserInput::readable(int, GIOCondition, gpointer data) {
  auto& self = *static_cast<X11UserInput*>(data);
  const std::function<void()> handler = self.handler_;  // which may replace itself
  if (self.takeEvents() && handler) handler();
  return G_SOURCE_CONTINUE;
}

// Reads all that has come. True if the user did something that counts.
bool X11UserInput::takeEvents() {
  Display* const connection = connection_.get();
  bool counts = false;
  while (XPending(connection) > 0) {
    XEvent event;
    XNextEvent(connection, &event);
    XGenericEventCookie& cookie = event.xcookie;
    if (event.type != GenericEvent || cookie.extension != extension_ ||
        !XGetEventData(connection, &cookie)) {
      continue;
    }
    const auto* raw = static_cast<const XIRawEvent*>(cookie.data);
    counts = counts || isKey(cookie.evtype) || !isWheel(raw->detail);
    XFreeEventData(connection, &cookie);
  }
  return counts;
}

}  // namespace quorin
