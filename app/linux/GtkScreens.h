// GtkScreens: the monitors of the desktop as the screens that the portable code knows. Main thread.
#pragma once

#include <gdk/gdk.h>
#include <vector>

#include "app/linux/DesktopGeometry.h"

namespace quorin::GtkScreens {

// The primary one first.
std::vector<Screen> all();

// Of the first screen, in pixels: what points count up from. 0 without any screen.
int firstHeight();

DesktopRect rectOf(const GdkRectangle& rectangle);

}  // namespace quorin::GtkScreens
