#include <cmath>
#include <gmock/gmock.h>
#include <limits>

#include "kit/value/WholeNumber.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(WholeNumber, IsIntegralAndOf64Bits) {
  EXPECT_EQ(wholeNumber(0.0), 0);
  EXPECT_EQ(wholeNumber(-0.0), 0);
  EXPECT_EQ(wholeNumber(300.0), 300);
  EXPECT_EQ(wholeNumber(-9223372036854775808.0), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(wholeNumber(9223372036854774784.0), 9223372036854774784);
  for (const double other : {0.5, -1.5, 9223372036854775808.0, -9223372036854777856.0, 1e300,
                             std::nan(""), std::numeric_limits<double>::infinity()})
    EXPECT_EQ(wholeNumber(other), std::nullopt) << other;
}

TEST(WholeNumber, IsNoTextNoTruthAndNothingElse) {
  EXPECT_EQ(wholeNumber(JSONValue(7)), 7);
  for (const JSONValue& other :
       {JSONValue("7"), JSONValue(true), JSONValue(nullptr), JSONValue(JSONValue::Array{7})})
    EXPECT_EQ(wholeNumber(other), std::nullopt);
}

TEST(WholeNumbers, PassOverWhatIsNone) {
  EXPECT_THAT(wholeNumbers({1, 2.5, "3", 4, nullptr}), ElementsAre(1, 4));
  EXPECT_THAT(wholeNumbers({}), IsEmpty());
}

TEST(Colour, IsThreePartsFrom0To255) {
  EXPECT_TRUE(isColour({0, 128, 255}));
  EXPECT_FALSE(isColour({0, 128}));
  EXPECT_FALSE(isColour({0, 128, 255, 0}));
  EXPECT_FALSE(isColour({-1, 128, 255}));
  EXPECT_FALSE(isColour({0, 128, 256}));
}

}  // namespace
}  // namespace quorin
