#include <gtest/gtest.h>

#include "app/linux/updates/VersionNumber.h"

namespace quorin {
namespace {

std::strong_ordering compared(const char* a, const char* b) {
  return VersionNumber::parse(a).value() <=> VersionNumber::parse(b).value();
}

TEST(VersionNumber, OrdersByNumbersAndNotByLetters) {
  EXPECT_EQ(compared("1.10", "1.9"), std::strong_ordering::greater);
  EXPECT_EQ(compared("0.2.0", "0.1.9"), std::strong_ordering::greater);
  EXPECT_EQ(compared("2", "10"), std::strong_ordering::less);
  EXPECT_EQ(compared("1.2.3", "1.2.3.1"), std::strong_ordering::less);
  EXPECT_EQ(compared("1.02", "1.2"), std::strong_ordering::equal);
}

TEST(VersionNumber, TakesMissingNumbersForZeros) {
  EXPECT_EQ(compared("1.2", "1.2.0"), std::strong_ordering::equal);
  EXPECT_EQ(compared("1", "1.0.0.0"), std::strong_ordering::equal);
  EXPECT_EQ(compared("0", "0.0"), std::strong_ordering::equal);
  EXPECT_EQ(compared("1", "1.0.1"), std::strong_ordering::less);
}

TEST(VersionNumber, IsNothingElse) {
  for (const char* text : {"", ".", "1.", ".1", "1..2", "v1", "1.2-3", "1.2 ", " 1", "-1", "+1",
                           "1.2beta", "1234567890", "1.2.3.4.5.6.7.8.9"}) {
    EXPECT_FALSE(VersionNumber::parse(text)) << text;
  }
  EXPECT_TRUE(VersionNumber::parse("1.2.3.4.5.6.7.999999999"));
}

}  // namespace
}  // namespace quorin
