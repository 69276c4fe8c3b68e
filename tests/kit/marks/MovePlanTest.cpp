#include <gtest/gtest.h>

#include "kit/marks/MovePlan.h"

namespace quorin::BridgeShapes {
namespace {

using Record = HighlightStore::Record;
using Colour = std::vector<std::int64_t>;

Record recordOf(std::vector<std::string> addrs, std::optional<bool> single) {
  return {"B", "S", std::move(addrs), Colour{1, 2, 3}, single};
}

const Record from = recordOf({"A1", "A2"}, true);
const Record wanted = recordOf({"B1", "B2"}, std::nullopt);

TEST(MovePlan, NamesTheOneRecordToMove) {
  EXPECT_EQ(movePlan({from}, wanted, 2), from);
  EXPECT_EQ(movePlan({from}, recordOf({"A2", "A1"}, std::nullopt), 2), from)
      << "another order is another list";
}

TEST(MovePlan, IsNoneUnlessTheRecordIsSingle) {
  EXPECT_EQ(movePlan({recordOf({"A1"}, std::nullopt)}, wanted, 2), std::nullopt);
  EXPECT_EQ(movePlan({recordOf({"A1"}, false)}, wanted, 2), std::nullopt);
}

TEST(MovePlan, IsNoneForNoRecordOrSeveral) {
  EXPECT_EQ(movePlan({}, wanted, 2), std::nullopt);
  EXPECT_EQ(movePlan({from, from}, wanted, 2), std::nullopt);
}

TEST(MovePlan, IsNoneForAnotherPlaceOrColour) {
  for (int i = 0; i < 4; ++i) {
    Record other = wanted;
    if (i == 0) other.book = "b";
    if (i == 1) other.sheet = "s";
    if (i == 2) other.rgb = Colour{1, 2, 4};
    if (i == 3) other.rgb = std::nullopt;
    EXPECT_EQ(movePlan({from}, other, 2), std::nullopt) << i;
  }
}

TEST(MovePlan, TakesTwoUnknownColoursForEqual) {
  Record colourless = from, other = wanted;
  colourless.rgb = other.rgb = std::nullopt;
  EXPECT_EQ(movePlan({colourless}, other, 2), colourless);
}

TEST(MovePlan, IsNoneWhenThereIsNothingToMove) {
  EXPECT_EQ(movePlan({from}, recordOf({"A1", "A2"}, std::nullopt), 2), std::nullopt);
}

TEST(MovePlan, IsNoneForMoreAddressesThanOneCallTakes) {
  EXPECT_EQ(movePlan({from}, recordOf({"B1"}, std::nullopt), 1), std::nullopt);
  EXPECT_EQ(movePlan({recordOf({"A1"}, true)}, wanted, 1), std::nullopt);
}

}  // namespace
}  // namespace quorin::BridgeShapes
