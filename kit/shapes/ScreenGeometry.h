// Windows and screens in screen points: the origin is the bottom left of the main screen, y grows
// upwards, and a frame's origin is its bottom left corner. Plain values.
#pragma once

namespace quorin {

struct ScreenSize {
  double width = 0, height = 0;
  bool operator==(const ScreenSize&) const = default;
};

struct ScreenFrame {
  double x = 0, y = 0, width = 0, height = 0;

  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  ScreenSize size() const { return {width, height}; }
  bool operator==(const ScreenFrame&) const = default;
};

}  // namespace quorin
