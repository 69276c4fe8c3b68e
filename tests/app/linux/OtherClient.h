// What other programs do to the keyboard, and where they put the icons of others.
#pragma once

#include <cstdint>
#include <gdk/gdk.h>
#include <string>
#include <vector>

namespace quorin {

// Holds a key combination, with exactly these modifiers.
class ForeignGrab {
 public:
  static constexpr unsigned shift = 1, capsLock = 2, alt = 8;

  // `key` as X11 names it: "d".
  ForeignGrab(const std::string& key, unsigned modifiers);
  ~ForeignGrab();
  ForeignGrab(const ForeignGrab&) = delete;
  ForeignGrab& operator=(const ForeignGrab&) = delete;

 private:
  void* display_;
};

// Has this program told of the keys that are sent to the root window while this lives, as the grab
// does while a key is down.
class ListensToKeys {
 public:
  explicit ListensToKeys(GdkDisplay* display);
  ~ListensToKeys();
  ListensToKeys(const ListensToKeys&) = delete;
  ListensToKeys& operator=(const ListensToKeys&) = delete;

 private:
  void* display_;
  long before_;
};

// Sends every program that listens a press of a key without the release, as if it came so many
// milliseconds after the beginning of the display's time.
void sendPress(const std::string& key, unsigned modifiers, std::uint32_t time);

// A tray of the old kind, that is told of icons to take in.
class Tray {
 public:
  Tray();
  ~Tray();
  Tray(const Tray&) = delete;
  Tray& operator=(const Tray&) = delete;

  // The windows that asked until now to be taken in.
  const std::vector<unsigned long>& icons();

 private:
  void* display_;
  unsigned long window_ = 0;
  std::vector<unsigned long> icons_;
};

// Makes the Num Lock key lock another of Mod1 (1) to Mod5 (5).
void moveNumLock(int from, int to);

}  // namespace quorin
