#include <gtest/gtest.h>

#include "host/Address.h"

namespace quorin::host {
namespace {

using Areas = std::vector<Area>;

struct Parsed {
  const char* text;
  Areas areas;
};

void PrintTo(const Parsed& parsed, std::ostream* out) {
  *out << parsed.text;
}

class AddressText : public ::testing::TestWithParam<Parsed> {};

TEST_P(AddressText, GivesItsAreas) {
  EXPECT_EQ(parseA1(GetParam().text), GetParam().areas);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AddressText,
    ::testing::Values(
        Parsed{"A1", {{1, 1, 1, 1}}}, Parsed{"$B$7", {{7, 2, 7, 2}}}, Parsed{"b$7", {{7, 2, 7, 2}}},
        Parsed{"xfd1048576", {{1048576, 16384, 1048576, 16384}}}, Parsed{"A1:B4", {{1, 1, 4, 2}}},
        Parsed{"B4:A1", {{1, 1, 4, 2}}}, Parsed{"B1:A4", {{1, 1, 4, 2}}},
        Parsed{"$A$1:C3", {{1, 1, 3, 3}}}, Parsed{"5:5", {{5, 1, 5, 16384}}},
        Parsed{"$9:$5", {{5, 1, 9, 16384}}}, Parsed{"B:D", {{1, 2, 1048576, 4}}},
        Parsed{"$C:$C", {{1, 3, 1048576, 3}}}, Parsed{"A1,C3", {{1, 1, 1, 1}, {3, 3, 3, 3}}},
        Parsed{"C5:D9, G9:H16", {{5, 3, 9, 4}, {9, 7, 16, 8}}},
        Parsed{
            "Z1,AA1,AZ1,ZZ1,AAA1",
            {{1, 26, 1, 26}, {1, 27, 1, 27}, {1, 52, 1, 52}, {1, 702, 1, 702}, {1, 703, 1, 703}}}));

class NoAddress : public ::testing::TestWithParam<const char*> {};

TEST_P(NoAddress, IsRefused) {
  EXPECT_EQ(parseA1(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, NoAddress,
                         ::testing::Values("", "A", "5", "$", "$A", "A0", "A01", "XFE1", "A1048577",
                                           "A1:", ":A1", "A1:B", "A:5", "A1:5", "A1:B2:C3", "A1,",
                                           ",A1", "A1,,B2", "1A", "A$", "$$A$1", "A1B", "A-1",
                                           "A1 B2", "R1C1", "A99999999999", "Sheet1!A1", "A1;B2",
                                           "\xC3\x84"
                                           "1"));

TEST(Address, IsWrittenAbsolutelyUnlessToldOtherwise) {
  EXPECT_EQ(addressText({{3, 2, 3, 2}}), "$B$3");
  EXPECT_EQ(addressText({{3, 2, 3, 2}}, {.rows = Anchor::relative}), "$B3");
  EXPECT_EQ(addressText({{3, 2, 3, 2}}, {.columns = Anchor::relative}), "B$3");
  EXPECT_EQ(addressText({{3, 2, 4, 5}}, {Anchor::relative, Anchor::relative}), "B3:E4");
  EXPECT_EQ(addressText({{1, 1, 1, 1}, {3, 3, 3, 3}}), "$A$1,$C$3");
}

TEST(Address, NamesWholeRowsAndColumnsByTheirEnds) {
  EXPECT_EQ(addressText({{5, 1, 5, maxColumn}}), "$5:$5");
  EXPECT_EQ(addressText({{1, 2, maxRow, 3}}), "$B:$C");
  EXPECT_EQ(addressText({{1, 1, maxRow, maxColumn}}), "$1:$1048576");
  EXPECT_EQ(addressText({{5, 1, 9, maxColumn}}, {.rows = Anchor::relative}), "5:9");
}

TEST(Address, IsWrittenInR1C1FromItsOrigin) {
  AddressStyle style{.notation = ReferenceStyle::r1c1};
  EXPECT_EQ(addressText({{3, 2, 4, 2}}, style), "R3C2:R4C2");
  EXPECT_EQ(addressText({{5, 1, 5, maxColumn}}, style), "R5");
  EXPECT_EQ(addressText({{1, 2, maxRow, 3}}, style), "C2:C3");
  style.rows = style.columns = Anchor::relative;
  style.origin = {3, 4, 3, 4};
  EXPECT_EQ(addressText({{3, 2, 5, 4}}, style), "RC[-2]:R[2]C");
}

TEST(Address, CountsCellsOfWholeSheetsWithoutOverflow) {
  EXPECT_EQ(cellCount({{1, 1, maxRow, maxColumn}}), 17179869184LL);
  EXPECT_EQ(cellCount({{1, 1, 2, 2}, {2, 2, 2, 2}}), 5);
}

TEST(Address, IntersectsAreas) {
  EXPECT_EQ(intersection({1, 1, 4, 4}, {3, 2, 9, 9}), (Area{3, 2, 4, 4}));
  EXPECT_EQ(intersection({1, 1, 2, 2}, {3, 1, 3, 2}), std::nullopt);
}

TEST(Address, SpellsColumns) {
  EXPECT_EQ(columnLetters(1), "A");
  EXPECT_EQ(columnLetters(26), "Z");
  EXPECT_EQ(columnLetters(27), "AA");
  EXPECT_EQ(columnLetters(702), "ZZ");
  EXPECT_EQ(columnLetters(703), "AAA");
  EXPECT_EQ(columnLetters(16384), "XFD");
}

}  // namespace
}  // namespace quorin::host
