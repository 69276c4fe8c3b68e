#include <gtest/gtest.h>
#include <limits>

#include "kit/shapes/HiddenRuns.h"

namespace quorin::BridgeShapes {
namespace {

using Runs = std::vector<Run>;

TEST(HiddenRuns, MergesRunsThatOverlapOrTouch) {
  EXPECT_EQ(mergeRuns({}), Runs{});
  EXPECT_EQ(mergeRuns({{8, 9}, {5, 7}}), (Runs{{5, 9}}));
  EXPECT_EQ(mergeRuns({{5, 7}, {9, 9}}), (Runs{{5, 7}, {9, 9}}));
  EXPECT_EQ(mergeRuns({{1, 10}, {2, 3}, {10, 12}}), (Runs{{1, 12}}));
  EXPECT_EQ(mergeRuns({{4, 4}, {4, 4}, {1, 1}, {2, 2}}), (Runs{{1, 2}, {4, 4}}));
}

TEST(HiddenRuns, MergesUpToTheLargestNumber) {
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(mergeRuns({{1, largest}, {5, 6}}), (Runs{{1, largest}}));
}

TEST(HiddenRuns, IsEmptyWithoutRowsAndColumns) {
  EXPECT_TRUE(HiddenRuns{}.isEmpty());
  EXPECT_FALSE((HiddenRuns{{{1, 1}}, {}}.isEmpty()));
  EXPECT_FALSE((HiddenRuns{{}, {{1, 1}}}.isEmpty()));
}

}  // namespace
}  // namespace quorin::BridgeShapes
