#include <cmath>
#include <gtest/gtest.h>

#include "script/lex/Numbers.h"

namespace quorin::script {
namespace {

TEST(Numbers, AreSpeltTheSameWithoutTheLibrarysConversions) {
  const std::pair<double, const char*> spellings[] = {
      {1e20, "1e+20"},
      {1.5, "1.5e+00"},
      {-0.000123, "-1.23e-04"},
      {1.0 / 3, "3.33333333333e-01"},
      {2.0 / 3, "6.66666666667e-01"},
      {123456789012345.0, "1.23456789012e+14"},
      {0.1 + 0.2, "3e-01"},
      {9.9999999999999e10, "1e+11"},
      {5e-324, "5e-324"},
  };
  for (const auto& [value, text] : spellings) EXPECT_EQ(scientificPlain(value), text);
}

TEST(Numbers, AreReadTheSameWithoutTheLibrarysConversions) {
  const std::pair<const char*, std::optional<double>> read[] = {
      {"12", 12},
      {"-1.5", -1.5},
      {".5", 0.5},
      {"5.", 5},
      {"1e3", 1000},
      {"1E-3", 0.001},
      {"1e999", HUGE_VAL},
      {"-1e999", -HUGE_VAL},
      {"1e-999", 0},
      {"", std::nullopt},
      {"+1", std::nullopt},
      {"1e", std::nullopt},
      {"0x10", std::nullopt},
      {"1 ", std::nullopt},
  };
  for (const auto& [text, value] : read) {
    EXPECT_EQ(parseDecimalPlain(text), value) << text;
    EXPECT_EQ(parseDecimal(text), value) << text;
  }
  EXPECT_EQ(parseDecimalPlain("inf"), std::nullopt);
}

}  // namespace
}  // namespace quorin::script
