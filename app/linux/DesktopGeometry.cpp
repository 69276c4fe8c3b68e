#include "app/linux/DesktopGeometry.h"

#include <cmath>
#include <locale>
#include <sstream>

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

}  // namespace quorin::DesktopGeometry
