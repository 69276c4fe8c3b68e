#include "app/shell/ScreenPlacement.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

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

std::string savedFrameText(const ScreenFrame& frame, const ScreenFrame& screen) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  for (const ScreenFrame& one : {frame, screen}) {
    for (const double number : {one.x, one.y, one.width, one.height}) {
      out << std::lround(number) << ' ';
    }
  }
  return out.str();
}

std::optional<ScreenFrame> savedFrame(std::string_view text) {
  std::istringstream in{std::string(text)};
  in.imbue(std::locale::classic());
  ScreenFrame frame;
  if (!(in >> frame.x >> frame.y >> frame.width >> frame.height)) return std::nullopt;
  constexpr double limit = 100'000;
  for (const double number : {frame.x, frame.y, frame.width, frame.height}) {
    if (!std::isfinite(number) || std::abs(number) > limit) return std::nullopt;
  }
  if (frame.width < 1 || frame.height < 1) return std::nullopt;
  return frame;
}

}  // namespace quorin::ScreenPlacement
