// UserInput: that the user has just done something with the keyboard or a button of the mouse, in
// whichever application. What it was is not told, nor asked for. Main thread only.
#pragma once

#include <functional>

namespace quorin {

class UserInput {
 public:
  virtual ~UserInput() = default;

  // Called after each press and each release of a key or a button; once for several that come
  // together. The repeats of a key that is held down, the wheel and the pointer's moves do not
  // count. One handler; a second call replaces it.
  virtual void observe(std::function<void()> handler) = 0;
};

}  // namespace quorin
