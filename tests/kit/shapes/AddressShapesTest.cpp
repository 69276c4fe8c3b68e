#include <gtest/gtest.h>

#include "kit/shapes/AddressShapes.h"

namespace quorin::BridgeShapes {
namespace {

struct AreaCase {
  const char* address;
  int areas;
};

class SelectionAreaCount : public testing::TestWithParam<AreaCase> {};

TEST_P(SelectionAreaCount, CountsSeparatorsOutsideQuotesAndBrackets) {
  EXPECT_EQ(selectionAreaCount(GetParam().address), GetParam().areas) << GetParam().address;
}

INSTANTIATE_TEST_SUITE_P(Addresses, SelectionAreaCount,
                         testing::Values(AreaCase{"$A$1", 1}, AreaCase{"$A$1:$B$4", 1},
                                         AreaCase{"$A$1,$C$3", 2}, AreaCase{"$A$1;$C$3;$E$5", 3},
                                         AreaCase{"'a,b;c'!$A$1", 1},
                                         AreaCase{"'a,b'!$A$1,'c;d'!$B$2", 2},
                                         AreaCase{"'it''s, so'!$A$1,$B$2", 2},
                                         AreaCase{"[x,y.xlsx]Sheet1!$A$1", 1},
                                         AreaCase{"[x,[y;z],w.xlsx]Sheet1!$A$1,$B$2", 2},
                                         AreaCase{"a]b,c", 2}, AreaCase{"", 0}));

TEST(StripDollars, RemovesEveryDollarSign) {
  EXPECT_EQ(stripDollars("$B$7"), "B7");
  EXPECT_EQ(stripDollars("$A$1:$B$4,C$3"), "A1:B4,C3");
  EXPECT_EQ(stripDollars("B7"), "B7");
  EXPECT_EQ(stripDollars("$"), "");
}

}  // namespace
}  // namespace quorin::BridgeShapes
