// What other programs do to the keyboard, and where they put the icons of others.
#pragma once

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
