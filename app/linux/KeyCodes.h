// The key combinations of the settings, which are macOS's, as X11 knows them.
#pragma once

#include <cstdint>
#include <optional>

namespace quorin {

// The X key code of the key at the same place as the one that a macOS virtual key code (ANSI
// layout) names; the keyboard's layout does not matter. Nothing for a code that no key has.
// Sources: HIToolbox's Events.h; the evdev codes of linux/input-event-codes.h, plus 8.
std::optional<unsigned> xKeyCode(std::uint32_t virtualKeyCode);

struct Modifiers {
  bool shift = false, control = false, alt = false, super = false;
  bool operator==(const Modifiers&) const = default;
};

// Of a mask of command 256 (Super), shift 512, option 2048 (Alt) and control 4096. Nothing for a
// mask that holds anything else.
std::optional<Modifiers> modifiersOf(std::uint32_t mask);

}  // namespace quorin
