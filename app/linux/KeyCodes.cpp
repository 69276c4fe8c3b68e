#include "app/linux/KeyCodes.h"

#include <array>

namespace quorin {

namespace {

// By virtual key code; 0 where there is no such key.
constexpr std::array<std::uint8_t, 128> keyCodes = [] {
  std::array<std::uint8_t, 128> codes{};
  // clang-format off
  // A S D F H G Z X C V, the key beside the left shift, B Q W E R Y T
  constexpr std::array<std::uint8_t, 18> first{38, 39, 40, 41, 43, 42, 52, 53, 54, 55, 94, 56, 24,
                                               25, 26, 27, 29, 28};
  // from 18 on: 1 2 3 4 6 5 = 9 7 - 8 0 ] O U [ I P Return L J ' K ; \ , / N M . Tab Space ` Delete
  constexpr std::array<std::uint8_t, 34> second{
      10, 11, 12, 13, 15, 14, 21, 18, 16, 20, 17, 19, 35, 32, 30, 34, 31, 33, 36, 46, 44, 48, 45,
      47, 51, 59, 61, 57, 58, 60, 23, 65, 49, 22};
  // clang-format on
  for (std::size_t i = 0; i < first.size(); ++i) codes[i] = first[i];
  for (std::size_t i = 0; i < second.size(); ++i) codes[18 + i] = second[i];
  codes[53] = 9;  // Escape
  // The keypad: . * + Clear / Enter - = and 0 to 9
  codes[65] = 91, codes[67] = 63, codes[69] = 86, codes[71] = 77, codes[75] = 106;
  codes[76] = 104, codes[78] = 82, codes[81] = 125;
  codes[82] = 90, codes[83] = 87, codes[84] = 88, codes[85] = 89, codes[86] = 83;
  codes[87] = 84, codes[88] = 85, codes[89] = 79, codes[91] = 80, codes[92] = 81;
  // F1 to F16
  codes[122] = 67, codes[120] = 68, codes[99] = 69, codes[118] = 70, codes[96] = 71;
  codes[97] = 72, codes[98] = 73, codes[100] = 74, codes[101] = 75, codes[109] = 76;
  codes[103] = 95, codes[111] = 96, codes[105] = 191, codes[107] = 192, codes[113] = 193;
  codes[106] = 194;
  // Help (Insert is at its place), Home, Page Up, Forward Delete, End, Page Down
  codes[114] = 118, codes[115] = 110, codes[116] = 112, codes[117] = 119, codes[119] = 115;
  codes[121] = 117;
  // Left, Right, Down, Up
  codes[123] = 113, codes[124] = 114, codes[125] = 116, codes[126] = 111;
  return codes;
}();

}  // namespace

std::optional<unsigned> xKeyCode(std::uint32_t virtualKeyCode) {
  if (virtualKeyCode >= keyCodes.size() || keyCodes[virtualKeyCode] == 0) return std::nullopt;
  return keyCodes[virtualKeyCode];
}

std::optional<Modifiers> modifiersOf(std::uint32_t mask) {
  constexpr std::uint32_t command = 256, shift = 512, option = 2048, control = 4096;
  if ((mask & ~(command | shift | option | control)) != 0) return std::nullopt;
  return Modifiers{(mask & shift) != 0, (mask & control) != 0, (mask & option) != 0,
                   (mask & command) != 0};
}

}  // namespace quorin
