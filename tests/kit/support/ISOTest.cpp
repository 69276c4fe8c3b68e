#include <gtest/gtest.h>

#include "kit/support/ISO.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;

// 2026-11-15T11:02:28Z, counted by hand: 20772 days after 1970-01-01 and 39748 seconds.
const ISO::Date known{std::chrono::seconds(20772LL * 86400 + 39748)};

TEST(ISO, FormatsInUTCToTheSecond) {
  EXPECT_EQ(ISO::string(known), "2026-11-15T11:02:28Z");
  EXPECT_EQ(ISO::string(known + 999ms), "2026-11-15T11:02:28Z");
  EXPECT_EQ(ISO::string(ISO::Date{}), "1970-01-01T00:00:00Z");
  EXPECT_EQ(ISO::string(ISO::Date{} - 1ms), "1969-12-31T23:59:59Z");
}

TEST(ISO, FormatsMillisecondsWithThreeDigits) {
  EXPECT_EQ(ISO::stringWithMilliseconds(known), "2026-11-15T11:02:28.000Z");
  EXPECT_EQ(ISO::stringWithMilliseconds(known + 7ms), "2026-11-15T11:02:28.007Z");
  EXPECT_EQ(ISO::stringWithMilliseconds(known + 999us), "2026-11-15T11:02:28.000Z");
  EXPECT_EQ(ISO::stringWithMilliseconds(known + 999999us), "2026-11-15T11:02:28.999Z");
}

TEST(ISO, ReadsWhatItWrites) {
  EXPECT_EQ(ISO::date("2026-11-15T11:02:28Z"), known);
  EXPECT_EQ(ISO::date("2024-02-29T00:00:00Z"),
            ISO::Date{std::chrono::sys_days{std::chrono::year{2024} / 2 / 29}});
}

TEST(ISO, ReadsYearsThatAClockInNanosecondsCannotHold) {
  EXPECT_EQ(ISO::date("2300-01-01T00:00:00Z"), ISO::Date{std::chrono::seconds(10413792000)});
  EXPECT_EQ(ISO::date("9999-12-31T23:59:59Z"), ISO::Date{std::chrono::seconds(253402300799)});
  EXPECT_EQ(ISO::date("0001-01-01T00:00:00Z"), ISO::Date{std::chrono::seconds(-62135596800)});
  EXPECT_EQ(ISO::string(*ISO::date("9999-12-31T23:59:59Z")), "9999-12-31T23:59:59Z");
}

TEST(ISO, ReadsOtherZones) {
  EXPECT_EQ(ISO::date("2026-11-15T12:02:28+01:00"), known);
  EXPECT_EQ(ISO::date("2026-11-15T05:32:28-05:30"), known);
  EXPECT_EQ(ISO::date("2026-11-16T11:01:28+23:59"), known);
}

TEST(ISO, GivesNoneForAbsentText) {
  EXPECT_EQ(ISO::date(std::nullopt), std::nullopt);
}

TEST(ISO, GivesNoneForOtherText) {
  for (const char* text :
       {"", "yesterday", "2026-11-15", "2026-11-15T11:02:28", "2026-11-15 11:02:28Z",
        "2026-11-15T11:02Z", "2026-11-15T11:02:28.123Z", "2026-11-15T11:02:28Zx",
        " 2026-11-15T11:02:28Z", "20261115T110228Z", "2026-13-15T11:02:28Z", "2026-02-29T11:02:28Z",
        "2026-11-15T24:00:00Z", "2026-11-15T11:60:28Z", "2026-11-15T11:02:60Z",
        "2026-11-15T11:02:28+1:00", "2026-11-15T11:02:28+24:00", "2026-11-1aT11:02:28Z",
        "2026-11-15t11:02:28z"}) {
    EXPECT_EQ(ISO::date(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quorin
