// Desktops: which window system the panel uses.
#pragma once

#include <memory>

#include "app/linux/Desktop.h"
#include "kit/platform/Environment.h"

namespace quorin {

// Initialises GTK. In a Wayland session the panel is a window of Wayland's where it can stand at
// the side of the screen, or where the compositor lists the windows of all programs; else it is one
// of X11's, which can be placed and stays above others; where there is no X11, an ordinary window
// of Wayland's. GDK_BACKEND=x11 asks for X11 alone. None where there is no display. Once, on the
// main thread.
std::unique_ptr<Desktop> makeDesktop(const Environment& environment);

}  // namespace quorin
