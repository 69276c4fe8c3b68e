#include "app/linux/X11HotKeys.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <algorithm>
#include <gdk/gdkx.h>

#include "app/linux/KeyCodes.h"

#undef Status  // a macro of Xlib.h

namespace quorin {

namespace {

constexpr unsigned combinationMasks =
    ShiftMask | ControlMask | Mod1Mask | Mod2Mask | Mod3Mask | Mod4Mask | Mod5Mask;

// How late a repeated press of a key may come on a busy machine. Its time is the server's, which
// counts from the keyboard, so this need not be long.
constexpr std::uint32_t slackMs = 500;

GdkModifierType gdkModifiers(const Modifiers& modifiers) {
  unsigned mask = 0;
  if (modifiers.shift) mask |= GDK_SHIFT_MASK;
  if (modifiers.control) mask |= GDK_CONTROL_MASK;
  if (modifiers.alt) mask |= GDK_MOD1_MASK;
  if (modifiers.super) mask |= GDK_SUPER_MASK;
  return static_cast<GdkModifierType>(mask);
}

}  // namespace

X11HotKeys::X11HotKeys(GdkDisplay* display)
    : display_(display),
      root_(gdk_screen_get_root_window(gdk_display_get_default_screen(display))) {
  XkbSetDetectableAutoRepeat(gdk_x11_display_get_xdisplay(display_), True, nullptr);
  gdk_window_add_filter(root_, filter, this);
  g_signal_connect(gdk_keymap_get_for_display(display_), "keys-changed", G_CALLBACK(keysChanged),
                   this);
}

X11HotKeys::~X11HotKeys() {
  g_signal_handlers_disconnect_by_data(gdk_keymap_get_for_display(display_), this);
  gdk_window_remove_filter(root_, filter, this);
  releaseAll();
}

HotKeyService::Status X11HotKeys::install(Handler handler) {
  if (handler_) return alreadyInstalled;
  handler_ = std::move(handler);
  return noError;
}

HotKeyService::Status X11HotKeys::add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) {
  const auto key = xKeyCode(keyCode);
  const auto masks = modifiersOf(modifiers);
  if (!key || !masks) return badParameter;
  const Combination fresh{id, *key, gdkModifiers(*masks)};
  const bool known =
      std::any_of(combinations_.begin(), combinations_.end(), [&](const Combination& other) {
        return other.keyCode == fresh.keyCode && other.modifiers == fresh.modifiers;
      });
  if (known || !grab(fresh)) return alreadyExists;
  combinations_.push_back(fresh);
  return noError;
}

void X11HotKeys::remove(HotKeyID id) {
  if (std::erase_if(combinations_, [id](const Combination& one) { return one.id == id; }) > 0) {
    grabAnew();
  }
}

// The modifiers as this keyboard reports them: Super is one of Mod1 to Mod5.
unsigned X11HotKeys::realMask(GdkModifierType modifiers) const {
  GdkModifierType mapped = modifiers;
  gdk_keymap_map_virtual_modifiers(gdk_keymap_get_for_display(display_), &mapped);
  return static_cast<unsigned>(mapped) & combinationMasks;
}

unsigned X11HotKeys::numLockMask() const {
  return XkbKeysymToModifiers(gdk_x11_display_get_xdisplay(display_), XK_Num_Lock);
}

// All four or none.
bool X11HotKeys::grab(const Combination& combination) {
  Display* const display = gdk_x11_display_get_xdisplay(display_);
  const unsigned mask = realMask(combination.modifiers);
  std::vector<Grab> grabs;
  for (const unsigned locks : {0U, unsigned{LockMask}, numLockMask(), LockMask | numLockMask()}) {
    grabs.push_back({static_cast<int>(combination.keyCode), mask | locks});
  }
  gdk_x11_display_error_trap_push(display_);
  for (const Grab& one : grabs) {
    XGrabKey(display, one.keyCode, one.mask, gdk_x11_window_get_xid(root_), False, GrabModeAsync,
             GrabModeAsync);
  }
  XSync(display, False);
  const bool refused = gdk_x11_display_error_trap_pop(display_) != 0;
  if (refused) {
    release(grabs);
  } else {
    grabs_.insert(grabs_.end(), grabs.begin(), grabs.end());
  }
  return !refused;
}

void X11HotKeys::release(const std::vector<Grab>& grabs) {
  Display* const display = gdk_x11_display_get_xdisplay(display_);
  gdk_x11_display_error_trap_push(display_);
  for (const Grab& one : grabs) {
    XUngrabKey(display, one.keyCode, one.mask, gdk_x11_window_get_xid(root_));
  }
  gdk_x11_display_error_trap_pop_ignored(display_);
}

void X11HotKeys::releaseAll() {
  release(grabs_);
  grabs_.clear();
}

void X11HotKeys::grabAnew() {
  releaseAll();
  for (const Combination& combination : combinations_) grab(combination);
}

// Another keyboard, or another mapping of the modifiers.
void X11HotKeys::keysChanged(GdkKeymap*, gpointer self) {
  static_cast<X11HotKeys*>(self)->grabAnew();
}

GdkFilterReturn X11HotKeys::filter(void* xevent, GdkEvent*, gpointer data) {
  auto& self = *static_cast<X11HotKeys*>(data);
  const auto& event = *static_cast<XEvent*>(xevent);
  if (event.type == KeyPress) {
    const XKeyEvent& key = event.xkey;
    return self.pressed(key.keycode, key.state, static_cast<std::uint32_t>(key.time));
  }
  if (event.type == KeyRelease) self.down_.erase(event.xkey.keycode);
  return GDK_FILTER_CONTINUE;
}

// A key that is held down is pressed again and again. Its release can get lost, as to a program
// that takes the keyboard; a press that comes later than a repeated one would is a new one.
bool X11HotKeys::repeats(unsigned keyCode, std::uint32_t time) const {
  const auto before = down_.find(keyCode);
  if (before == down_.end()) return false;
  unsigned delay = 660, interval = 40;  // the server's own defaults, in milliseconds
  XkbGetAutoRepeatRate(gdk_x11_display_get_xdisplay(display_), XkbUseCoreKbd, &delay, &interval);
  // The server's time has 32 bits and begins anew after 49 days.
  const auto passed = time - before->second;
  return passed <= std::max(delay, interval) + slackMs;
}

GdkFilterReturn X11HotKeys::pressed(unsigned keyCode, unsigned state, std::uint32_t time) {
  const unsigned held = state & combinationMasks & ~numLockMask();
  for (const Combination& combination : combinations_) {
    if (combination.keyCode != keyCode || realMask(combination.modifiers) != held) continue;
    const bool repeated = repeats(keyCode, time);
    down_[keyCode] = time;
    if (!repeated && handler_) handler_(combination.id);
    return GDK_FILTER_REMOVE;
  }
  return GDK_FILTER_CONTINUE;
}

}  // namespace quorin
