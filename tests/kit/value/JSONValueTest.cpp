#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

#include "kit/value/JSONValue.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

// Built from the inside out, without copying what is there already.
JSONValue nestedArrays(int levels) {
  JSONValue value = 1;
  for (int i = 0; i < levels; ++i) {
    Array outer;
    outer.push_back(std::move(value));
    value = std::move(outer);
  }
  return value;
}

JSONValue nestedObjects(int levels) {
  JSONValue value = 1;
  for (int i = 0; i < levels; ++i) {
    Object outer;
    outer.emplace("k", std::move(value));
    value = std::move(outer);
  }
  return value;
}

TEST(JSONValue, HasItsSixCasesInTheirOrder) {
  EXPECT_EQ(static_cast<int>(JSONValue(true).type()), 0);
  EXPECT_EQ(static_cast<int>(JSONValue(1.5).type()), 1);
  EXPECT_EQ(static_cast<int>(JSONValue("a").type()), 2);
  EXPECT_EQ(static_cast<int>(JSONValue(Array{}).type()), 3);
  EXPECT_EQ(static_cast<int>(JSONValue(Object{}).type()), 4);
  EXPECT_EQ(static_cast<int>(JSONValue(nullptr).type()), 5);
  EXPECT_TRUE(JSONValue().isNull());
}

TEST(JSONValue, NeverEqualsAValueOfAnotherCase) {
  const Array values{true, 1, "1", Array{1}, Object{{"1", 1}}, nullptr};
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t j = 0; j < values.size(); ++j) EXPECT_EQ(values[i] == values[j], i == j);
  }
  EXPECT_FALSE(JSONValue(false) == JSONValue(nullptr));
  EXPECT_FALSE(JSONValue(0) == JSONValue(false));
  EXPECT_FALSE(JSONValue("") == JSONValue(nullptr));
  EXPECT_FALSE(JSONValue(Array{}) == JSONValue(Object{}));
}

TEST(JSONValue, ComparesNumbersByIEEERules) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(JSONValue(0.0) == JSONValue(-0.0));
  EXPECT_FALSE(JSONValue(nan) == JSONValue(nan));
  EXPECT_FALSE(JSONValue(Array{nan}) == JSONValue(Array{nan}));
  EXPECT_TRUE(JSONValue(infinity) == JSONValue(infinity));
  EXPECT_FALSE(JSONValue(infinity) == JSONValue(-infinity));
}

TEST(JSONValue, ComparesTextByCanonicalEquivalence) {
  EXPECT_TRUE(JSONValue("caf\u00E9") == JSONValue("cafe\u0301"));
  EXPECT_FALSE(JSONValue("caf\u00E9") == JSONValue("cafe"));
  // Compatibility is not equivalence.
  EXPECT_FALSE(JSONValue("\uFB01") == JSONValue("fi"));
  EXPECT_FALSE(JSONValue("A") == JSONValue("a"));
  // The Angstrom sign and the letter A with ring are canonically one character.
  EXPECT_TRUE(JSONValue("\u212B") == JSONValue("\u00C5"));
}

TEST(JSONValue, ComparesInvalidUTF8ByItsBytes) {
  EXPECT_TRUE(JSONValue("\xFFz") == JSONValue("\xFFz"));
  EXPECT_FALSE(JSONValue("\xFFz") == JSONValue("\xFEz"));
}

TEST(JSONValue, ComparesArraysInOrder) {
  EXPECT_TRUE(JSONValue(Array{1, "a"}) == JSONValue(Array{1, "a"}));
  EXPECT_FALSE(JSONValue(Array{1, "a"}) == JSONValue(Array{"a", 1}));
  EXPECT_FALSE(JSONValue(Array{1}) == JSONValue(Array{1, 1}));
}

TEST(JSONValue, ComparesObjectsWhateverTheOrderOfInsertion) {
  Object one;
  one["b"] = 1;
  one["a"] = 2;
  Object other;
  other["a"] = 2;
  other["b"] = 1;
  EXPECT_TRUE(JSONValue(one) == JSONValue(other));
  other["b"] = 3;
  EXPECT_FALSE(JSONValue(one) == JSONValue(other));
  EXPECT_FALSE(JSONValue(Object{{"a", 1}}) == JSONValue(Object{{"b", 1}}));
  EXPECT_FALSE(JSONValue(Object{{"a", 1}}) == JSONValue(Object{{"a", 1}, {"b", 1}}));
}

TEST(JSONValue, ComparesKeysByCanonicalEquivalence) {
  const Object composed{{"\u00E9", 1}, {"f", 2}};
  const Object decomposed{{"e\u0301", 1}, {"f", 2}};
  EXPECT_TRUE(JSONValue(composed) == JSONValue(decomposed));
  EXPECT_TRUE(JSONValue(decomposed) == JSONValue(composed));
  const Object otherValue{{"e\u0301", 3}, {"f", 2}};
  EXPECT_FALSE(JSONValue(composed) == JSONValue(otherValue));
}

TEST(JSONValue, ComparesKeysOfSeveralSpellingsAlikeFromEitherSide) {
  const JSONValue bothSpellings = Object{{"e\u0301", 1}, {"\u00E9", 1}};
  const JSONValue oneSpelling = Object{{"\u00E9", 1}, {"f", 1}};
  EXPECT_FALSE(bothSpellings == oneSpelling);
  EXPECT_FALSE(oneSpelling == bothSpellings);
  // Three spellings of one letter: the Angstrom sign, the letter with ring, letter and ring.
  const JSONValue signAndLetter = Object{{"\u212B", 1}, {"\u00C5", 2}};
  const JSONValue letterAndRing = Object{{"\u00C5", 2}, {"A\u030A", 1}};
  EXPECT_EQ(signAndLetter == letterAndRing, letterAndRing == signAndLetter);
  // Every value counts, not that of one spelling alone.
  const JSONValue firstDiffers = Object{{"\u00C5", 1}, {"A\u030A", 3}};
  EXPECT_FALSE(signAndLetter == firstDiffers);
  EXPECT_FALSE(firstDiffers == signAndLetter);
}

TEST(JSONValue, FindsMembersOfObjectsOnly) {
  const JSONValue object = Object{{"a", 1}};
  ASSERT_NE(object.member("a"), nullptr);
  EXPECT_EQ(*object.member("a"), JSONValue(1));
  EXPECT_EQ(object.member("b"), nullptr);
  EXPECT_EQ(JSONValue(Array{1}).member("a"), nullptr);
}

TEST(JSONValue, CopiesDoNotShareTheirChildren) {
  const JSONValue original = Array{Array{1}};
  JSONValue copy = original;
  copy.array()->front() = 2;
  EXPECT_EQ(original, JSONValue(Array{Array{1}}));
  EXPECT_EQ(copy, JSONValue(Array{2}));
}

TEST(JSONValue, CanBeReplacedByAPartOfItself) {
  JSONValue value = Array{Array{"inner", 7}, 1};
  value = value.array()->front();
  EXPECT_EQ(value, JSONValue(Array{"inner", 7}));
  value = std::move(value.array()->back());
  EXPECT_EQ(value, JSONValue(7));
}

TEST(JSONValue, IsDestroyedAtAnyDepthWithoutRecursion) {
  { const JSONValue arrays = nestedArrays(200'000); }
  { const JSONValue objects = nestedObjects(200'000); }
  JSONValue replaced = nestedArrays(200'000);
  replaced = 1;
  EXPECT_EQ(replaced, JSONValue(1));
}

TEST(JSONValue, CopiesAndComparesToTheMaximumDepth) {
  const int levels = static_cast<int>(JSONValue::maximumDepth);
  const JSONValue arrays = nestedArrays(levels);
  const JSONValue objects = nestedObjects(levels);
  const JSONValue copyOfArrays = arrays;
  const JSONValue copyOfObjects = objects;
  EXPECT_TRUE(copyOfArrays == arrays);
  EXPECT_TRUE(copyOfObjects == objects);
  EXPECT_FALSE(copyOfArrays == nestedArrays(levels - 1));
}

}  // namespace
}  // namespace quorin
