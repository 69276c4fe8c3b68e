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

TEST(HiddenRuns, FindsTheGapsBetweenWhatIsCovered) {
  EXPECT_EQ(gaps(5, 9, {{6, 7}}), (Runs{{5, 5}, {8, 9}}));
  EXPECT_EQ(gaps(5, 9, {}), (Runs{{5, 9}}));
  EXPECT_EQ(gaps(5, 9, {{5, 9}}), Runs{});
  EXPECT_EQ(gaps(5, 9, {{1, 4}, {10, 12}}), (Runs{{5, 9}}));
  EXPECT_EQ(gaps(5, 9, {{1, 5}, {9, 12}}), (Runs{{6, 8}}));
  EXPECT_EQ(gaps(5, 9, {{8, 8}, {6, 6}, {6, 7}}), (Runs{{5, 5}, {9, 9}}));
  EXPECT_EQ(gaps(5, 9, {{7, 6}}), (Runs{{5, 9}})) << "an empty run covers nothing";
  EXPECT_EQ(gaps(9, 5, {}), Runs{});
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(gaps(1, largest, {{2, largest}}), (Runs{{1, 1}}));
}

TEST(HiddenRuns, CountsRows) {
  EXPECT_EQ(count({}), 0);
  EXPECT_EQ(count({{5, 5}, {7, 9}}), 4);
}

TEST(HiddenRuns, SubtractsWholeRunsAlone) {
  EXPECT_EQ(subtract({{{5, 9}, {12, 12}}, {{1, 2}}}, {{{5, 7}, {12, 12}}, {{3, 3}}}),
            (HiddenRuns{{{5, 9}}, {{1, 2}}}));
  EXPECT_EQ(subtract({{{5, 9}}, {{5, 9}}}, {{{5, 9}}, {}}), (HiddenRuns{{}, {{5, 9}}}));
}

TEST(HiddenRuns, FindsTheRunsThatHoldACell) {
  const HiddenRuns runs{{{5, 7}, {9, 9}}, {{1, 2}, {4, 4}}};
  EXPECT_EQ(runsContaining(5, 4, runs), (HiddenRuns{{{5, 7}}, {{4, 4}}}));
  EXPECT_EQ(runsContaining(7, 3, runs), (HiddenRuns{{{5, 7}}, {}}));
  EXPECT_EQ(runsContaining(8, 1, runs), (HiddenRuns{{}, {{1, 2}}}));
}

TEST(HiddenRuns, FindsTheRunsThatOverlapOthers) {
  const HiddenRuns runs{{{5, 7}, {9, 9}}, {{1, 2}, {4, 4}}};
  EXPECT_EQ(runsOverlapping(runs, {{{7, 8}}, {{3, 9}}}), (HiddenRuns{{{5, 7}}, {{4, 4}}}));
  EXPECT_EQ(runsOverlapping(runs, {{{8, 8}}, {}}), HiddenRuns{});
}

TEST(HiddenRuns, DescribesRowsThenColumns) {
  EXPECT_EQ(describe({{{12, 14}, {20, 20}}, {{3, 3}}}), "rows 12\u201314, row 20, column C");
  EXPECT_EQ(describe({{}, {{3, 3}, {5, 28}}}), "column C, columns E\u2013AB");
  EXPECT_EQ(describe({}), "");
}

TEST(HiddenRuns, IsEmptyWithoutRowsAndColumns) {
  EXPECT_TRUE(HiddenRuns{}.isEmpty());
  EXPECT_FALSE((HiddenRuns{{{1, 1}}, {}}.isEmpty()));
  EXPECT_FALSE((HiddenRuns{{}, {{1, 1}}}.isEmpty()));
}

}  // namespace
}  // namespace quorin::BridgeShapes
