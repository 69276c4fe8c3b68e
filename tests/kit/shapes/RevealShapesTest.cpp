#include <gtest/gtest.h>

#include "kit/shapes/RevealShapes.h"
#include "tests/kit/shapes/ShapeMessages.h"

namespace quorin::BridgeShapes {
namespace {

using Array = JSONValue::Array;

Array answer() {
  return {5, 2, 3, 1, "Q1", 1, 1, 40, 10, true, nullptr, "$B$5,$B$7:$C$9"};
}

std::string messageFor(const JSONValue& value) {
  return shapeMessageOf([&] { revealRead("Q2", value); });
}

TEST(RevealReadOf, ReadsTwelveItems) {
  EXPECT_EQ(revealRead("Q2", answer()), (RevealRead{{1, 1, 40, 10},
                                                    {5, 2, 7, 2},
                                                    "Q1",
                                                    "Q2",
                                                    true,
                                                    std::nullopt,
                                                    {{5, 2, 5, 2}, {7, 2, 9, 3}}}));
}

TEST(RevealReadOf, ReadsTheFirstNineAlone) {
  const Array all = answer();
  EXPECT_EQ(revealRead("Q2", Array(all.begin(), all.begin() + 9)),
            (RevealRead{{1, 1, 40, 10}, {5, 2, 7, 2}, "Q1", "Q2", std::nullopt, std::nullopt, {}}));
}

TEST(RevealReadOf, DropsAreasThatItCannotRead) {
  Array strange = answer();
  strange[11] = ",$A$1,,#REF!,S!A1,B:B,";
  EXPECT_EQ(revealRead("Q2", strange).visibleAreas,
            (std::vector<Rect>{{1, 1, 1, 1}, {1, 2, 1048576, 2}}));
  for (const JSONValue& none : {JSONValue(""), JSONValue(nullptr), JSONValue(5)}) {
    strange[11] = none;
    EXPECT_TRUE(revealRead("Q2", strange).visibleAreas.empty());
  }
}

TEST(RevealReadOf, RefusesAnyOtherShape) {
  const Array all = answer();
  for (const std::size_t size : {0u, 8u, 10u, 11u})
    EXPECT_EQ(messageFor(Array(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(size))),
              "revealread payload has an unexpected shape");
  Array longer = all;
  longer.emplace_back(1);
  EXPECT_EQ(messageFor(longer), "revealread payload has an unexpected shape");
  EXPECT_EQ(messageFor(nullptr), "revealread payload has an unexpected shape");
  Array nameless = all;
  nameless[4] = 5;
  EXPECT_EQ(messageFor(nameless), "revealread payload has an unexpected shape");
}

TEST(RevealReadOf, RefusesRectanglesThatAreNone) {
  for (const std::size_t place : {0u, 1u, 2u, 3u, 5u, 6u, 7u, 8u})
    for (const JSONValue& bad : {JSONValue(0), JSONValue(-1), JSONValue(1.5), JSONValue("1"),
                                 JSONValue(nullptr), JSONValue(9223372036854775808.0)}) {
      Array changed = answer();
      changed[place] = bad;
      EXPECT_EQ(messageFor(changed), "revealread rect unreadable") << place;
    }
  Array beyond = answer();
  beyond[0] = beyond[2] =
      9223372036854774784.0;  // the largest double that is an integer of 64 bits
  EXPECT_EQ(messageFor(beyond), "revealread rect unreadable");
}

RevealRead readOf(const Rect& target, std::optional<bool> rowsHidden,
                  std::optional<bool> colsHidden, std::vector<Rect> areas = {}) {
  return {{1, 1, 40, 10}, target, "Q1", "Q1", rowsHidden, colsHidden, std::move(areas)};
}

TEST(RawRuns, TakeTheWholeTargetWhereAllIsHidden) {
  EXPECT_EQ(rawRuns(readOf({5, 2, 7, 3}, true, true)), (HiddenRuns{{{5, 7}}, {{2, 3}}}));
  EXPECT_EQ(rawRuns(readOf({5, 2, 5, 2}, true, false)), (HiddenRuns{{{5, 5}}, {}}));
  EXPECT_EQ(rawRuns(readOf({5, 2, 5, 2}, false, true)), (HiddenRuns{{}, {{2, 2}}}));
}

TEST(RawRuns, AreNoneForASingleRowThatIsNotHidden) {
  EXPECT_EQ(rawRuns(readOf({5, 2, 5, 2}, false, false)), HiddenRuns{});
}

TEST(RawRuns, TakeTheGapsWhereSomeMayBeHidden) {
  for (const std::optional<bool> flag : {std::optional<bool>(), std::optional(false)})
    EXPECT_EQ(rawRuns(readOf({1, 1, 9, 5}, flag, flag,
                             {{1, 1, 2, 1}, {1, 4, 2, 5}, {8, 1, 9, 1}, {8, 4, 9, 5}})),
              (HiddenRuns{{{3, 7}}, {{2, 3}}}));
  EXPECT_EQ(rawRuns(readOf({5, 2, 5, 2}, std::nullopt, false)), (HiddenRuns{{{5, 5}}, {}}))
      << "not known, and not in view";
}

TEST(RawRuns, DoNotTakeColumnsForHiddenBecauseAllRowsAre) {
  for (const std::optional<bool> flag : {std::optional<bool>(), std::optional(false)}) {
    EXPECT_EQ(rawRuns(readOf({5, 1, 5, 9}, true, flag)), (HiddenRuns{{{5, 5}}, {}}));
    EXPECT_EQ(rawRuns(readOf({5, 1, 9, 1}, flag, true)), (HiddenRuns{{}, {{1, 1}}}));
  }
}

TEST(RevealDecisionOf, IsNoneForWhatIsInView) {
  EXPECT_EQ(revealDecision(readOf({1, 1, 40, 10}, false, false)), std::nullopt);
}

TEST(RevealDecisionOf, ScrollsToAMarginAboveAndBeside) {
  RevealRead read = readOf({20, 10, 20, 10}, false, false);
  read.visible = {1, 1, 15, 8};
  EXPECT_EQ(revealDecision(read), (RevealScroll{17, 8, false}));
  read.target = {16, 1, 16, 1};
  EXPECT_EQ(revealDecision(read), (RevealScroll{13, 1, false}));
  read.target = {4, 9, 4, 9};
  EXPECT_EQ(revealDecision(read), (RevealScroll{1, 7, false}));
  read.target = {15, 8, 16, 8};
  EXPECT_EQ(revealDecision(read), (RevealScroll{12, 6, false})) << "one row out of view";
}

TEST(RevealDecisionOf, ActivatesAnotherSheet) {
  RevealRead read = readOf({1, 1, 1, 1}, false, false);
  read.targetSheet = "q1";
  EXPECT_EQ(revealDecision(read), (RevealScroll{1, 1, true})) << "names are compared exactly";
}

}  // namespace
}  // namespace quorin::BridgeShapes
