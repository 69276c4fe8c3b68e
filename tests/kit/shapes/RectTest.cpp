#include <gtest/gtest.h>

#include "kit/shapes/Rect.h"

namespace quorin::BridgeShapes {
namespace {

TEST(Rect, ContainsWhatLiesInside) {
  const Rect rect{2, 3, 5, 7};
  EXPECT_TRUE(rect.contains(rect));
  EXPECT_TRUE(rect.contains({3, 4, 3, 4}));
  EXPECT_FALSE(rect.contains({1, 3, 5, 7}));
  EXPECT_FALSE(rect.contains({2, 2, 5, 7}));
  EXPECT_FALSE(rect.contains({2, 3, 6, 7}));
  EXPECT_FALSE(rect.contains({2, 3, 5, 8}));
}

TEST(ColumnLetters, NameColumns) {
  const struct {
    std::int64_t column;
    const char* letters;
  } examples[] = {{1, "A"},   {26, "Z"},   {27, "AA"},   {52, "AZ"},
                  {53, "BA"}, {702, "ZZ"}, {703, "AAA"}, {16384, "XFD"}};
  for (const auto& example : examples) {
    EXPECT_EQ(columnLetters(example.column), example.letters);
    EXPECT_EQ(columnIndex(example.letters), example.column);
  }
  EXPECT_EQ(columnLetters(0), "");
  EXPECT_EQ(columnLetters(-5), "");
}

TEST(ColumnIndex, ReadsLettersAlone) {
  EXPECT_EQ(columnIndex("xfd"), 16384);
  EXPECT_EQ(columnIndex("ZZZZ"), 475254);
  for (const char* const text : {"", "1", "A1", " A", "A ", "$A", "\xC3\x84", "@", "[", "`", "{",
                                 "AAAAAAAAAAAAAAAAAAAAAAAA"})
    EXPECT_EQ(columnIndex(text), std::nullopt) << text;
}

TEST(AreaRect, ReadsOneArea) {
  const struct {
    const char* address;
    Rect rect;
  } examples[] = {
      {"$B$2:$D$9", {2, 2, 9, 4}},  {"b2", {2, 2, 2, 2}},
      {"B:B", {1, 2, 1048576, 2}},  {"$C:$E", {1, 3, 1048576, 5}},
      {"3:5", {3, 1, 5, 16384}},    {"XFD1048576", {1048576, 16384, 1048576, 16384}},
      {"A1:C", {1, 1, 1048576, 3}}, {"A:C3", {1, 1, 3, 3}},
      {"A2:5", {2, 1, 5, 16384}},   {"A1:", {1, 1, 1, 1}},
      {":A1", {1, 1, 1, 1}},        {"A1::B2", {1, 1, 2, 2}},
      {"B", {1, 2, 1048576, 2}},    {"7", {7, 1, 7, 16384}},
  };
  for (const auto& example : examples)
    EXPECT_EQ(areaRect(example.address), example.rect) << example.address;
}

TEST(AreaRect, IsNoneForAnythingElse) {
  for (const char* const address : {"",         ":",
                                    "A1:B2:C3", "$",
                                    "A1:$",     "D9:B2",
                                    "B9:D2",    "D2:B9",
                                    "A0",       "A1048577",
                                    "XFE1",     "A-1",
                                    "A+1",      "1A",
                                    "A1B",      "A 1",
                                    " A1",      "A1,B2",
                                    "Rate!",    "Sheet1!A1",
                                    "A1.5",     "A99999999999999999999",
                                    "#REF!"})
    EXPECT_EQ(areaRect(address), std::nullopt) << address;
}

TEST(CellsIn, CountsEachCellOnce) {
  EXPECT_EQ(cellsIn({}), 0);
  EXPECT_EQ(cellsIn({{2, 2, 2, 2}}), 1);
  EXPECT_EQ(cellsIn({{1, 1, 4, 3}, {10, 1, 10, 2}}), 14);
  EXPECT_EQ(cellsIn({{1, 1, 4, 3}, {2, 2, 2, 2}, {1, 1, 4, 3}}), 12) << "inside, and the same";
  EXPECT_EQ(cellsIn({{1, 1, 3, 3}, {3, 3, 5, 5}}), 17) << "a corner in common";
  EXPECT_EQ(cellsIn({{1, 1, 2, 2}, {3, 1, 4, 2}, {1, 3, 4, 4}}), 16) << "side by side";
  EXPECT_EQ(cellsIn({{1, 2, 1048576, 2}, {3, 1, 3, 16384}}), 1048576 + 16384 - 1);
}

TEST(CellsIn, AddsUpManyRectanglesAsTheyAre) {
  EXPECT_EQ(cellsIn(std::vector<Rect>(1000, Rect{1, 1, 2, 2})), 4);
  EXPECT_EQ(cellsIn(std::vector<Rect>(1001, Rect{1, 1, 2, 2})), 4004);
}

}  // namespace
}  // namespace quorin::BridgeShapes
