#include "app/linux/GtkScreens.h"

#include <algorithm>

namespace quorin::GtkScreens {
namespace {

// The primary one first.
std::vector<GdkMonitor*> monitors() {
  GdkDisplay* display = gdk_display_get_default();
  std::vector<GdkMonitor*> found;
  for (int i = 0; i < gdk_display_get_n_monitors(display); ++i) {
    found.push_back(gdk_display_get_monitor(display, i));
  }
  std::stable_partition(found.begin(), found.end(),
                        [](GdkMonitor* one) { return gdk_monitor_is_primary(one); });
  return found;
}

}  // namespace

DesktopRect rectOf(const GdkRectangle& rectangle) {
  return {rectangle.x, rectangle.y, rectangle.width, rectangle.height};
}

int firstHeight() {
  const std::vector<GdkMonitor*> found = monitors();
  if (found.empty()) return 0;
  GdkRectangle geometry;
  gdk_monitor_get_geometry(found.front(), &geometry);
  return geometry.height;
}

std::vector<Screen> all() {
  std::vector<Screen> screens;
  const int height = firstHeight();
  for (GdkMonitor* monitor : monitors()) {
    GdkRectangle whole, free;
    gdk_monitor_get_geometry(monitor, &whole);
    gdk_monitor_get_workarea(monitor, &free);
    screens.push_back({DesktopGeometry::toPoints(rectOf(whole), height),
                       DesktopGeometry::toPoints(rectOf(free), height)});
  }
  return screens;
}

}  // namespace quorin::GtkScreens
