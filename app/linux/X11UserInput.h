// X11UserInput: the display's raw events, on a connection of its own, since GDK decides alone what
// its own one is told. No other program waits for us to read them. Windows of a Wayland session
// that are not X11's are not seen. Main thread only.
#pragma once

#include <gdk/gdk.h>
#include <memory>

#include "app/linux/GLibHandles.h"
#include "app/shell/ports/UserInput.h"

struct _XDisplay;

namespace quorin {

class X11UserInput : public UserInput {
 public:
  // A display without the extension is watched in vain.
  explicit X11UserInput(GdkDisplay* display);

  void observe(std::function<void()> handler) override { handler_ = std::move(handler); }

 private:
  struct Close {
    void operator()(_XDisplay* connection) const;
  };

  static gboolean readable(int, GIOCondition, gpointer self);
  bool takeEvents();

  std::unique_ptr<_XDisplay, Close> connection_;
  GSourceHandle source_;
  int extension_ = 0;
  std::function<void()> handler_;
};

}  // namespace quorin
