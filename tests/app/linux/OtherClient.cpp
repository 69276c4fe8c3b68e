#include "tests/app/linux/OtherClient.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
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
