#include <gmock/gmock.h>

#include "kit/shapes/ErrorLiterals.h"

namespace quorin::BridgeShapes {
namespace {

TEST(ErrorLiterals, AreTheSeventeenInOrder) {
  EXPECT_THAT(errorLiterals, testing::ElementsAre("#NULL!", "#DIV/0!", "#VALUE!", "#REF!", "#NAME?",
                                                  "#NUM!", "#N/A", "#GETTING_DATA", "#SPILL!",
                                                  "#CALC!", "#FIELD!", "#CONNECT!", "#BLOCKED!",
                                                  "#UNKNOWN!", "#EXTERNAL!", "#PYTHON!", "#BUSY!"));
}

TEST(ErrorLiterals, AreFoundByErrorTypeUpToEight) {
  EXPECT_EQ(errorLiteral(1), "#NULL!");
  EXPECT_EQ(errorLiteral(2), "#DIV/0!");
  EXPECT_EQ(errorLiteral(7), "#N/A");
  EXPECT_EQ(errorLiteral(8), "#GETTING_DATA");
}

TEST(ErrorLiterals, AreUnknownForEveryOtherNumber) {
  for (const long long number : {0LL, -1LL, 9LL, 14LL, 1LL << 40})
    EXPECT_EQ(errorLiteral(number), "#UNKNOWN!") << number;
}

}  // namespace
}  // namespace quorin::BridgeShapes
