#include <cmath>
#include <cstdlib>
#include <gmock/gmock.h>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "kit/value/RealText.h"
#include "tests/fakes/Named.h"

namespace quorin {
namespace {

using Writer = char* (*)(char*, char*, double);

std::string written(Writer writer, double value) {
  char room[longestReal];
  return {room, writer(room, room + sizeof room, value)};
}

class RealText : public testing::TestWithParam<fakes::Named<Writer>> {};

INSTANTIATE_TEST_SUITE_P(Both, RealText,
                         testing::Values(fakes::Named<Writer>{"writeReal", &writeReal},
                                         fakes::Named<Writer>{"writeRealPlain", &writeRealPlain}));

TEST_P(RealText, WritesShortNumbersShortly) {
  EXPECT_EQ(written(GetParam().value, 0.1), "0.1");
  EXPECT_EQ(written(GetParam().value, -2.5), "-2.5");
  EXPECT_EQ(written(GetParam().value, 1e300), "1e+300");
  EXPECT_EQ(written(GetParam().value, 0.30000000000000004), "0.30000000000000004");
}

TEST_P(RealText, ReadsBackAsTheSameNumber) {
  std::mt19937_64 random(20260301);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-300, 300);
  for (int i = 0; i < 20'000; ++i) {
    const double value = std::ldexp(mantissa(random), exponent(random));
    ASSERT_EQ(std::strtod(written(GetParam().value, value).c_str(), nullptr), value);
  }
  using Limits = std::numeric_limits<double>;
  for (const double value : {Limits::max(), Limits::min(), Limits::denorm_min(), 1.0 / 3, 2.0 / 3,
                             123456789012345678.0, -9007199254740993.5}) {
    EXPECT_EQ(std::strtod(written(GetParam().value, value).c_str(), nullptr), value);
  }
}

using Reader = std::optional<double> (*)(std::string_view);

class ReadReal : public testing::TestWithParam<fakes::Named<Reader>> {};

INSTANTIATE_TEST_SUITE_P(Both, ReadReal,
                         testing::Values(fakes::Named<Reader>{"readReal", &readReal},
                                         fakes::Named<Reader>{"readRealPlain", &readRealPlain}));

TEST_P(ReadReal, TakesDecimalNumbers) {
  const std::pair<const char*, double> numbers[] = {
      {"0", 0},
      {"10", 10},
      {"-2.5", -2.5},
      {"1e3", 1000},
      {"1E+3", 1000},
      {"5.", 5},
      {".5", 0.5},
      {"-.5e-1", -0.05},
      {"007", 7},
      {"0.1", 0.1},
      {"1e308", 1e308},
      {"5e-324", 5e-324},
      {"2.2250738585072014e-308", 0x1p-1022},
  };
  for (const auto& [text, number] : numbers) EXPECT_EQ(GetParam().value(text), number) << text;
}

TEST_P(ReadReal, RefusesEverythingElse) {
  for (const char* text :
       {"",  " 1", "1 ",   "+1",  "--1", "1,5",      "1.5.2", "e5",     "1e",     "1e+",
        ".", "-",  "0x10", "inf", "nan", "infinity", "1e999", "-1e999", "1e-999", "1f"}) {
    EXPECT_EQ(GetParam().value(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quorin
