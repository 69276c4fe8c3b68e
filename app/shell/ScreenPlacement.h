// Where a window may stand on the screens that there are. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/shell/ports/PanelWindow.h"

namespace quorin::ScreenPlacement {

// The screen that holds most of the frame; none when no screen holds any of it.
std::optional<Screen> screenOf(const ScreenFrame& frame, const std::vector<Screen>& screens);

// The frame with its title bar in reach: not higher than the screen's visible frame and its top not
// above it; a frame off all screens is moved into the first one. Without screens it stays.
ScreenFrame constrained(const ScreenFrame& frame, const std::vector<Screen>& screens);

// A saved frame as text: its four numbers, then those of the screen it was on, each followed by a
// space: "900 252 460 588 0 0 1440 900 ".
std::string savedFrameText(const ScreenFrame& frame, const ScreenFrame& screen);
// The frame of such text; none when the text does not begin with four numbers of a real frame.
std::optional<ScreenFrame> savedFrame(std::string_view text);

}  // namespace quorin::ScreenPlacement
