// What a test asks of the fake event manager, and the user's hand.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorin {

std::size_t installedHandlers();
std::size_t registeredHotKeys();

// The user presses the combination. True if it was registered and handled.
bool userPresses(std::uint32_t code, std::uint32_t modifiers);

}  // namespace quorin
