#include <gtest/gtest.h>

#include "kit/shapes/AddressShapes.h"

namespace quorin::BridgeShapes {
namespace {

struct AreaCase {
  const char* address;
  int areas;
};

void PrintTo(const AreaCase& each, std::ostream* out) {
  *out << each.address;
}

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

TEST(ParseSheetAddr, TakesTheSheetOff) {
  const struct {
    const char* address;
    SheetAddress parsed;
  } examples[] = {
      {"A1", {std::nullopt, "A1"}},
      {"", {std::nullopt, ""}},
      {"Sheet1!A1", {"Sheet1", "A1"}},
      {"S!A1!B2", {"S", "A1!B2"}},
      {"!A1", {"", "A1"}},
      {"'My Sheet'!$A$1:$B$2", {"My Sheet", "$A$1:$B$2"}},
      {"'It''s'!A1", {"It's", "A1"}},
      {"'''Quoted'''!A1", {"'Quoted'", "A1"}},
      {"'a!b'!A1", {"a!b", "A1"}},
      {"'a'b'!A1", {"a'b", "A1"}},
      {"''!A1", {"", "A1"}},
      {"'open", {std::nullopt, "'open"}},
      {"'open''!A1", {std::nullopt, "'open''!A1"}},
      {"'", {std::nullopt, "'"}},
      {"A1'!B2", {"A1'", "B2"}},
      {"'[B.xlsx]S'!A1", {"[B.xlsx]S", "A1"}},
  };
  for (const auto& example : examples)
    EXPECT_EQ(parseSheetAddr(example.address), example.parsed) << example.address;
}

TEST(GroupBySheet, KeepsTheOrderOfFirstAppearance) {
  EXPECT_EQ(groupBySheet({"B!1", "A!2", "B!3"}, "X"),
            (std::vector<SheetGroup>{{"B", {"1", "3"}}, {"A", {"2"}}}));
  EXPECT_EQ(groupBySheet({}, "X"), std::vector<SheetGroup>{});
}

TEST(GroupBySheet, PutsBareAddressesOnTheFirstNamedSheet) {
  EXPECT_EQ(groupBySheet({"Sheet2!A1", "B2"}, "Sheet1"),
            (std::vector<SheetGroup>{{"Sheet2", {"A1", "B2"}}}));
  EXPECT_EQ(groupBySheet({"B2", "Sheet2!A1", "Sheet3!A1"}, "Sheet1"),
            (std::vector<SheetGroup>{{"Sheet2", {"B2", "A1"}}, {"Sheet3", {"A1"}}}));
}

TEST(GroupBySheet, PutsThemOnTheActiveSheetWhereNoneIsNamed) {
  EXPECT_EQ(groupBySheet({"B2", "A1", "B2"}, "Sheet1"),
            (std::vector<SheetGroup>{{"Sheet1", {"B2", "A1", "B2"}}}));
}

TEST(GroupBySheet, TellsSheetsApartByTheirExactNames) {
  EXPECT_EQ(groupBySheet({"q!A1", "Q!A1"}, "X"),
            (std::vector<SheetGroup>{{"q", {"A1"}}, {"Q", {"A1"}}}));
}

}  // namespace
}  // namespace quorin::BridgeShapes
