// Where a window may stand on the screens that there are. Pure functions.
#pragma once

#include <optional>
#include <vector>

#include "app/shell/ports/PanelWindow.h"

namespace quorin::ScreenPlacement {

// The screen that holds most of the frame; none when no screen holds any of it.
std::optional<Screen> screenOf(const ScreenFrame& frame, const std::vector<Screen>& screens);

// The frame with its title bar in reach: not higher than the screen's visible frame and its top not
// above it; a frame off all screens is moved into the first one. Without screens it stays.
ScreenFrame constrained(const ScreenFrame& frame, const std::vector<Screen>& screens);

}  // namespace quorin::ScreenPlacement
