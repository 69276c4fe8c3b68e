#include <gtest/gtest.h>

#include "host/calc/workbook/ViewData.h"

namespace quorin::host::calc {
namespace {

TEST(ViewData, GivesTheTabOnTopAndItsCursor) {
  EXPECT_EQ(viewPosition("83/60/0;1;tw:738;2/14/0/0/0/0/2/0/0/0/0;9/53/0/0/0/0/2/0/0/0/0"),
            (ViewPosition{1, 54, 10}));
}

TEST(ViewData, ReadsTheFormForCellsFarDown) {
  EXPECT_EQ(viewPosition("100/60/0;0;tw:270;2+9000+0+0+0+0+2+0+0+8970+8970"),
            (ViewPosition{0, 9001, 3}));
}

TEST(ViewData, DoesWithoutTheWidthOfTheTabBar) {
  EXPECT_EQ(viewPosition("100/60/0;0;4/6/0/0/0/0/2/0/0/0/0"), (ViewPosition{0, 7, 5}));
}

TEST(ViewData, GivesNothingForOtherText) {
  for (const char* text : {"", ";", "100/60/0;0", "100/60/0;x;1/2", "100/60/0;1;1/2", "a;0;b/c"}) {
    EXPECT_EQ(viewPosition(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quorin::host::calc
