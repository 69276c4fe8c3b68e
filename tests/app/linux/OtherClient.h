// What other programs do to the keyboard.
#pragma once

#include <string>

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

// Makes the Num Lock key lock another of Mod1 (1) to Mod5 (5).
void moveNumLock(int from, int to);

}  // namespace quorin
