// The desktop's rectangles (origin top left, y downwards, whole pixels) as screen points (origin
// bottom left of the first screen, y upwards), and where a window may stand. Pure functions.
#pragma once

#include "app/shell/ScreenPlacement.h"
#include "kit/shapes/ScreenGeometry.h"

namespace quorin {

struct DesktopRect {
  int x = 0, y = 0, width = 0, height = 0;
  bool operator==(const DesktopRect&) const = default;
};

// What a window manager adds around a window's content.
struct Decoration {
  int left = 0, right = 0, top = 0, bottom = 0;
  bool operator==(const Decoration&) const = default;
};

namespace DesktopGeometry {

// `screenHeight` is that of the first screen. Fractions are rounded.
ScreenFrame toPoints(const DesktopRect& rect, int screenHeight);
DesktopRect toDesktop(const ScreenFrame& frame, int screenHeight);

using ScreenPlacement::constrained;
using ScreenPlacement::savedFrame;
using ScreenPlacement::savedFrameText;
using ScreenPlacement::screenOf;

}  // namespace DesktopGeometry
}  // namespace quorin
