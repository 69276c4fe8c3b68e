#include <gtest/gtest.h>

#include "host/calc/grammar/TableItems.h"

namespace quorin::host::calc {
namespace {

struct Case {
  const char* text;
  TableItems items;
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << each.text;
}

class TableBrackets : public testing::TestWithParam<Case> {};

TEST_P(TableBrackets, SayWhichPartIsMeant) {
  const std::string text = std::string("T") + GetParam().text + "*2";
  std::size_t position = 1;
  const auto items = readTableItems(text, position);
  ASSERT_TRUE(items) << text;
  EXPECT_EQ(*items, GetParam().items) << text;
  EXPECT_EQ(text.substr(position), "*2");
}

INSTANTIATE_TEST_SUITE_P(
    Table, TableBrackets,
    testing::Values(
        Case{"[]", {.data = true}},
        Case{"[Net]", {.data = true, .firstColumn = "Net", .lastColumn = "Net"}},
        Case{"[Net Sum]", {.data = true, .firstColumn = "Net Sum", .lastColumn = "Net Sum"}},
        Case{"[a'[b'']", {.data = true, .firstColumn = "a[b'", .lastColumn = "a[b'"}},
        Case{"[#All]", {.all = true}}, Case{"[#totals]", {.totals = true}},
        Case{"[@]", {.thisRow = true}},
        Case{"[@Net]", {.thisRow = true, .firstColumn = "Net", .lastColumn = "Net"}},
        Case{"[@[Net Sum]]", {.thisRow = true, .firstColumn = "Net Sum", .lastColumn = "Net Sum"}},
        Case{"[@[A]:[B]]", {.thisRow = true, .firstColumn = "A", .lastColumn = "B"}},
        Case{"[[#This Row],[Net, Sum]]",
             {.thisRow = true, .firstColumn = "Net, Sum", .lastColumn = "Net, Sum"}},
        Case{"[[A]:[C]]", {.data = true, .firstColumn = "A", .lastColumn = "C"}},
        Case{"[ [#Headers] , [#Data] , [A] ]",
             {.data = true, .headers = true, .firstColumn = "A", .lastColumn = "A"}}));

class NotABracket : public testing::TestWithParam<const char*> {};

TEST_P(NotABracket, GivesNothing) {
  std::size_t position = 0;
  EXPECT_FALSE(readTableItems(GetParam(), position));
  EXPECT_EQ(position, 0U);
}

INSTANTIATE_TEST_SUITE_P(Table, NotABracket,
                         testing::Values("", "x", "[", "[Net", "[[Net]", "[[Net]:]", "[#Nothing]",
                                         "[[#Data]:[A]]", "[[A][B]]", "[[A],[B]]", "[a[b]"));

}  // namespace
}  // namespace quorin::host::calc
