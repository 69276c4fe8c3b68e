#include <gmock/gmock.h>
#include <set>

#include "app/linux/KeyCodes.h"

namespace quorin {
namespace {

// Virtual key codes of macOS beside X11's, by what is printed on an ANSI keyboard.
TEST(KeyCodes, NameTheKeyAtTheSamePlace) {
  struct Case {
    std::uint32_t virtualKey;
    unsigned xKey;
    const char* key;
  };
  const std::vector<Case> cases = {{0, 38, "A"},
                                   {12, 24, "Q"},
                                   {15, 27, "R"},
                                   {16, 29, "Y"},
                                   {6, 52, "Z"},
                                   {46, 58, "M"},
                                   {2, 40, "D"},
                                   {40, 45, "K"},
                                   {18, 10, "1"},
                                   {22, 15, "6"},
                                   {23, 14, "5"},
                                   {25, 18, "9"},
                                   {29, 19, "0"},
                                   {24, 21, "="},
                                   {27, 20, "-"},
                                   {30, 35, "]"},
                                   {33, 34, "["},
                                   {39, 48, "'"},
                                   {41, 47, ";"},
                                   {42, 51, "\\"},
                                   {43, 59, ","},
                                   {44, 61, "/"},
                                   {47, 60, "."},
                                   {50, 49, "`"},
                                   {10, 94, "section"},
                                   {36, 36, "Return"},
                                   {48, 23, "Tab"},
                                   {49, 65, "Space"},
                                   {51, 22, "Delete"},
                                   {53, 9, "Escape"},
                                   {122, 67, "F1"},
                                   {109, 76, "F10"},
                                   {103, 95, "F11"},
                                   {111, 96, "F12"},
                                   {115, 110, "Home"},
                                   {119, 115, "End"},
                                   {116, 112, "Page Up"},
                                   {121, 117, "Page Down"},
                                   {117, 119, "Forward Delete"},
                                   {123, 113, "Left"},
                                   {124, 114, "Right"},
                                   {125, 116, "Down"},
                                   {126, 111, "Up"},
                                   {82, 90, "keypad 0"},
                                   {89, 79, "keypad 7"},
                                   {92, 81, "keypad 9"},
                                   {76, 104, "keypad Enter"}};
  for (const Case& one : cases) EXPECT_EQ(xKeyCode(one.virtualKey), one.xKey) << one.key;
}

TEST(KeyCodes, AreOneForEachKey) {
  std::set<unsigned> seen;
  for (std::uint32_t code = 0; code < 128; ++code) {
    if (const auto key = xKeyCode(code)) {
      EXPECT_TRUE(seen.insert(*key).second) << code;
    }
  }
  EXPECT_EQ(seen.size(), 97U);
}

TEST(KeyCodes, AreNothingWhereThereIsNoKey) {
  for (const std::uint32_t code : {52U, 66U, 127U, 128U, 65535U, 4294967295U}) {
    EXPECT_EQ(xKeyCode(code), std::nullopt) << code;
  }
}

TEST(KeyModifiers, AreReadFromTheMask) {
  EXPECT_EQ(modifiersOf(0), (Modifiers{}));
  EXPECT_EQ(modifiersOf(256), (Modifiers{.super = true}));
  EXPECT_EQ(modifiersOf(512), (Modifiers{.shift = true}));
  EXPECT_EQ(modifiersOf(2048), (Modifiers{.alt = true}));
  EXPECT_EQ(modifiersOf(4096), (Modifiers{.control = true}));
  EXPECT_EQ(modifiersOf(6144), (Modifiers{.control = true, .alt = true}));
  EXPECT_EQ(modifiersOf(1024), std::nullopt);  // Caps Lock
  EXPECT_EQ(modifiersOf(65536), std::nullopt);
}

}  // namespace
}  // namespace quorin
