#include "tests/app/linux/OtherClient.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <gdk/gdkx.h>
#include <stdexcept>

namespace quorin {

static_assert(ForeignGrab::shift == ShiftMask && ForeignGrab::capsLock == LockMask &&
              ForeignGrab::alt == Mod1Mask);

ForeignGrab::ForeignGrab(const std::string& key, unsigned modifiers)
    : display_(XOpenDisplay(nullptr)) {
  auto* const display = static_cast<Display*>(display_);
  if (!display) throw std::runtime_error("the display does not open");
  XGrabKey(display, XKeysymToKeycode(display, XStringToKeysym(key.c_str())), modifiers,
           DefaultRootWindow(display), False, GrabModeAsync, GrabModeAsync);
  XSync(display, False);
}

ListensToKeys::ListensToKeys(GdkDisplay* display)
    : display_(gdk_x11_display_get_xdisplay(display)) {
  auto* const connection = static_cast<Display*>(display_);
  XWindowAttributes attributes{};
  XGetWindowAttributes(connection, DefaultRootWindow(connection), &attributes);
  before_ = attributes.your_event_mask;
  XSelectInput(connection, DefaultRootWindow(connection), before_ | KeyPressMask);
  XSync(connection, False);
}

ListensToKeys::~ListensToKeys() {
  auto* const connection = static_cast<Display*>(display_);
  XSelectInput(connection, DefaultRootWindow(connection), before_);
}

void sendPress(const std::string& key, unsigned modifiers, std::uint32_t time) {
  Display* const display = XOpenDisplay(nullptr);
  if (!display) throw std::runtime_error("the display does not open");
  XEvent press{};
  press.xkey.type = KeyPress;
  press.xkey.window = press.xkey.root = DefaultRootWindow(display);
  press.xkey.time = time;
  press.xkey.state = modifiers;
  press.xkey.keycode = XKeysymToKeycode(display, XStringToKeysym(key.c_str()));
  press.xkey.same_screen = True;
  XSendEvent(display, DefaultRootWindow(display), False, KeyPressMask, &press);
  XSync(display, False);
  XCloseDisplay(display);
}

Tray::Tray() : display_(XOpenDisplay(nullptr)) {
  auto* const display = static_cast<Display*>(display_);
  if (!display) throw std::runtime_error("the display does not open");
  const Atom selection = XInternAtom(display, "_NET_SYSTEM_TRAY_S0", False);
  window_ = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 24, 24, 0, 0, 0);
  XSetSelectionOwner(display, selection, window_, CurrentTime);
  XEvent told{};
  told.xclient.type = ClientMessage;
  told.xclient.window = DefaultRootWindow(display);
  told.xclient.message_type = XInternAtom(display, "MANAGER", False);
  told.xclient.format = 32;
  told.xclient.data.l[1] = static_cast<long>(selection);
  told.xclient.data.l[2] = static_cast<long>(window_);
  XSendEvent(display, DefaultRootWindow(display), False, StructureNotifyMask, &told);
  XSync(display, False);
}

Tray::~Tray() {
  XCloseDisplay(static_cast<Display*>(display_));
}

const std::vector<unsigned long>& Tray::icons() {
  auto* const display = static_cast<Display*>(display_);
  const Atom request = XInternAtom(display, "_NET_SYSTEM_TRAY_OPCODE", False);
  constexpr long dock = 0;
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    if (event.type != ClientMessage || event.xclient.message_type != request) continue;
    if (event.xclient.data.l[1] == dock) {
      icons_.push_back(static_cast<unsigned long>(event.xclient.data.l[2]));
    }
  }
  return icons_;
}

void moveNumLock(int from, int to) {
  Display* const display = XOpenDisplay(nullptr);
  if (!display) throw std::runtime_error("the display does not open");
  constexpr int mod1 = 3;  // after Shift, Lock and Control
  const KeyCode key = XKeysymToKeycode(display, XStringToKeysym("Num_Lock"));
  XModifierKeymap* map = XGetModifierMapping(display);
  map = XDeleteModifiermapEntry(map, key, mod1 + from - 1);
  map = XInsertModifiermapEntry(map, key, mod1 + to - 1);
  XSetModifierMapping(display, map);
  XFreeModifiermap(map);
  XCloseDisplay(display);
}

ForeignGrab::~ForeignGrab() {
  XCloseDisplay(static_cast<Display*>(display_));
}

}  // namespace quorin
