#include <gtest/gtest.h>

#include "host/calc/reveal/RowTrace.h"

namespace quorin::host::calc {
namespace {

using Sheet = std::vector<std::string>;

RowDigests digestsOf(const Sheet& sheet) {
  return [sheet](int number) {
    const auto index = static_cast<std::size_t>(number - 1);
    return index < sheet.size() ? digestOf({sheet[index]}) : blankRow;
  };
}

int lastOf(const Sheet& sheet) {
  return static_cast<int>(sheet.size());
}

// Where a row of the sheet is found after it became another.
std::optional<int> found(const Sheet& before, int number, const Sheet& after) {
  const RowTrace trace = traceOf(number, lastOf(before), digestsOf(before));
  return findRow(trace, number, lastOf(after), digestsOf(after));
}

const Sheet fruit{"head", "apple", "pear", "fig", "plum", "kiwi", "lime", "date"};
const Sheet turns{"head", "even", "odd", "even", "odd", "even", "odd", "even", "odd"};

TEST(RowDigest, IsBlankForCellsThatHoldNothing) {
  EXPECT_EQ(digestOf({}), blankRow);
  EXPECT_EQ(digestOf({"", ""}), blankRow);
  EXPECT_NE(digestOf({"", "a"}), blankRow);
}

TEST(RowDigest, TellsContentsApart) {
  EXPECT_NE(digestOf({"a"}), digestOf({"b"}));
  EXPECT_NE(digestOf({"ab", "c"}), digestOf({"a", "bc"}));
  EXPECT_NE(digestOf({"a"}), digestOf({"a", "a"}));
  EXPECT_EQ(digestOf({"a", "", "b"}), digestOf({"", "a", "b"}));
}

TEST(RowDigest, IsOfTheFirstEightCells) {
  const std::vector<std::string> eight{"1", "2", "3", "4", "5", "6", "7", "8"};
  std::vector<std::string> nine = eight;
  nine.push_back("9");
  EXPECT_EQ(digestOf(nine), digestOf(eight));
  EXPECT_NE(digestOf({eight.begin(), eight.begin() + 7}), digestOf(eight));
}

TEST(RowTrace, FindsARowThatHasNotMoved) {
  EXPECT_EQ(found(fruit, 1, fruit), 1);
  EXPECT_EQ(found(fruit, 5, fruit), 5);
  EXPECT_EQ(found(turns, 4, turns), 4);
  EXPECT_EQ(found(fruit, 40, fruit), 40) << "below everything";
}

TEST(RowTrace, FindsARowThatHasMoved) {
  Sheet sheet = fruit;
  sheet.insert(sheet.begin() + 1, {"new", "newer", "newest"});
  EXPECT_EQ(found(fruit, 5, sheet), 8);
  EXPECT_EQ(found(fruit, 2, sheet), 5) << "beside what is new";
  sheet = fruit;
  sheet.erase(sheet.begin() + 1, sheet.begin() + 3);
  EXPECT_EQ(found(fruit, 5, sheet), 3);
  EXPECT_EQ(found(fruit, 4, sheet), 2);
}

TEST(RowTrace, GoesAsFarAsFiveHundredRows) {
  Sheet sheet = fruit;
  sheet.insert(sheet.begin() + 1, 500, "new");
  EXPECT_EQ(found(fruit, 5, sheet), 505);
  sheet.insert(sheet.begin() + 1, "one more");
  EXPECT_EQ(found(fruit, 5, sheet), std::nullopt);
}

TEST(RowTrace, FindsARowInASheetThatHasGrown) {
  Sheet sheet = fruit;
  sheet.push_back("melon");
  EXPECT_EQ(found(fruit, 5, sheet), 5);
}

TEST(RowTrace, DoesNotFindARowThatIsGone) {
  Sheet sheet = fruit;
  sheet.erase(sheet.begin() + 4);
  EXPECT_EQ(found(fruit, 5, sheet), std::nullopt);
}

TEST(RowTrace, DoesNotChooseAmongRowsThatLookAlike) {
  Sheet sheet = turns;
  sheet.insert(sheet.begin() + 1, {"even", "odd"});
  EXPECT_EQ(found(turns, 5, sheet), std::nullopt);
  EXPECT_EQ(found(Sheet{"a", "x", "x", "b"}, 30, Sheet{"a", "new", "x", "x", "b"}), std::nullopt)
      << "blank among blank ones";
  EXPECT_EQ(
      found({"a", "b", "me", "d", "e", "f"}, 3, {"a", "b", "me", "x", "y", "z", "me", "d", "e"}),
      std::nullopt)
      << "two with one side as it was";
}

TEST(RowTrace, FindsARowThatHoldsSomethingElseNow) {
  Sheet sheet = fruit;
  sheet[4] = "prune";
  EXPECT_EQ(found(fruit, 5, sheet), 5);
  sheet.push_back("melon");
  EXPECT_EQ(found(fruit, 5, sheet), std::nullopt) << "it may as well be another";
}

}  // namespace
}  // namespace quorin::host::calc
