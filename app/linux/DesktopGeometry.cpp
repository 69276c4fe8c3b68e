#include "app/linux/DesktopGeometry.h"

#include <cmath>

namespace quorin::DesktopGeometry {

namespace {

int rounded(double value) {
  return static_cast<int>(std::lround(value));
}

}  // namespace

ScreenFrame toPoints(const DesktopRect& rect, int screenHeight) {
  return {static_cast<double>(rect.x), static_cast<double>(screenHeight - rect.y - rect.height),
          static_cast<double>(rect.width), static_cast<double>(rect.height)};
}

DesktopRect toDesktop(const ScreenFrame& frame, int screenHeight) {
  const int height = rounded(frame.height);
  return {rounded(frame.x), screenHeight - rounded(frame.y) - height, rounded(frame.width), height};
}

}  // namespace quorin::DesktopGeometry
