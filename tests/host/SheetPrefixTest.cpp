#include <gtest/gtest.h>

#include "host/SheetPrefix.h"

namespace quorin::host {
namespace {

struct Split {
  const char* text;
  std::optional<std::string> book, sheet;
  std::string rest;
};

void PrintTo(const Split& split, std::ostream* out) {
  *out << split.text;
}

class Prefixed : public ::testing::TestWithParam<Split> {};

TEST_P(Prefixed, SplitsIntoBookSheetAndRest) {
  const auto parts = splitSheetPrefix(GetParam().text);
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->book, GetParam().book);
  EXPECT_EQ(parts->sheet, GetParam().sheet);
  EXPECT_EQ(parts->rest, GetParam().rest);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Prefixed,
    ::testing::Values(Split{"A1", {}, {}, "A1"}, Split{"Sheet1!A1", {}, "Sheet1", "A1"},
                      Split{"'My Sheet'!$A$1:$B$2", {}, "My Sheet", "$A$1:$B$2"},
                      Split{"'It''s'!A1", {}, "It's", "A1"}, Split{"'a!b'!A1", {}, "a!b", "A1"},
                      Split{"[Book1]Sheet1!$A$1", "Book1", "Sheet1", "$A$1"},
                      Split{"'[My Book.xlsx]Sheet 1'!$A$1", "My Book.xlsx", "Sheet 1", "$A$1"},
                      Split{"'[a[1].xlsx]S'!A1", "a[1].xlsx", "S", "A1"},
                      Split{"Data!Rates", {}, "Data", "Rates"}));

class BadPrefix : public ::testing::TestWithParam<const char*> {};

TEST_P(BadPrefix, IsRefused) {
  EXPECT_FALSE(splitSheetPrefix(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Table, BadPrefix,
                         ::testing::Values("!A1", "'Sheet1!A1", "'Sheet1'A1", "''!A1", "[]S!A1",
                                           "[Book]!A1", "[BookS!A1", "'[Book]'!A1"));

TEST(SheetPrefix, IsQuotedWhereExcelNeedsQuotes) {
  EXPECT_EQ(sheetPrefix("", "Sheet1"), "Sheet1!");
  EXPECT_EQ(sheetPrefix("Book1.xlsx", "Sheet1"), "[Book1.xlsx]Sheet1!");
  EXPECT_EQ(sheetPrefix("My Book.xlsx", "Sheet1"), "'[My Book.xlsx]Sheet1'!");
  EXPECT_EQ(sheetPrefix("", "It's 1"), "'It''s 1'!");
  EXPECT_EQ(sheetPrefix("", "2024"), "'2024'!");
  EXPECT_EQ(sheetPrefix("", "AB12"), "'AB12'!");
  EXPECT_EQ(sheetPrefix("", "R1C1"), "'R1C1'!");
  EXPECT_EQ(sheetPrefix("", "rc"), "'rc'!");
  EXPECT_EQ(sheetPrefix("",
                        "\xC3\x9C"
                        "bersicht"),
            "\xC3\x9C"
            "bersicht!");
}

}  // namespace
}  // namespace quorin::host
