#include "app/shell/ScreenPlacement.h"

#include <algorithm>

namespace quorin::ScreenPlacement {

namespace {

// As much of a window as one needs to take hold of it.
constexpr double graspable = 48;

double overlap(const ScreenFrame& a, const ScreenFrame& b) {
  const double width = std::min(a.maxX(), b.maxX()) - std::max(a.x, b.x);
  const double height = std::min(a.maxY(), b.maxY()) - std::max(a.y, b.y);
  return width > 0 && height > 0 ? width * height : 0;
}

}  // namespace

std::optional<Screen> screenOf(const ScreenFrame& frame, const std::vector<Screen>& screens) {
  const auto most =
      std::max_element(screens.begin(), screens.end(), [&](const Screen& a, const Screen& b) {
        return overlap(frame, a.frame) < overlap(frame, b.frame);
      });
  if (most == screens.end() || overlap(frame, most->frame) == 0) return std::nullopt;
  return *most;
}

ScreenFrame constrained(const ScreenFrame& wanted, const std::vector<Screen>& screens) {
  if (screens.empty()) return wanted;
  ScreenFrame frame = wanted;
  const Screen screen = screenOf(frame, screens).value_or(screens.front());
  const ScreenFrame& visible = screen.visibleFrame;
  if (frame.height > visible.height) {
    frame.height = visible.height;
    frame.y = visible.y;
  }
  frame.y = std::min(frame.y, visible.maxY() - frame.height);
  // Its title bar may hang over every other edge, but for the part that one can take hold of.
  frame.y = std::max(frame.y, visible.y + graspable - frame.height);
  if (frame.maxX() < visible.x + graspable || frame.x > visible.maxX() - graspable) {
    frame.x = std::max(visible.x, std::min(frame.x, visible.maxX() - frame.width));
  }
  return frame;
}

}  // namespace quorin::ScreenPlacement
