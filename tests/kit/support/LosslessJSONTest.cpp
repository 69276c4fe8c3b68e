#include <gtest/gtest.h>
#include <stdexcept>

#include "kit/support/LosslessJSON.h"

namespace quorin {
namespace {

std::string again(std::string_view text) {
  return LosslessJSON::parse(text).text(LosslessJSON::Style::compact);
}

TEST(LosslessJSON, KeepsTheSpellingOfEveryNumber) {
  for (const char* text :
       {"0", "-0", "-0.0", "1.50", "0.1000000000000000055511151231257827", "1e5", "1E+05",
        "-12.5e-07", "9007199254740993", "18446744073709551616", "123456789012345678901234567890",
        "-99999999999999999999.000", "3.0", "1e308"}) {
    EXPECT_EQ(again(text), text);
  }
  EXPECT_EQ(again("[1.0,{\"a\":9007199254740993}]"), "[1.0,{\"a\":9007199254740993}]");
}

TEST(LosslessJSON, KeepsEveryOtherCase) {
  for (const char* text : {"true", "false", "null", "\"\"", "\"a \\\" \u00E9 \U0001F600\"", "[]",
                           "{}", "[[],{}]", "{\"a\":[1,\"b\",null]}"}) {
    EXPECT_EQ(again(text), text);
  }
}

TEST(LosslessJSON, WritesAnItemALineInThePrettyForm) {
  EXPECT_EQ(
      LosslessJSON::parse(R"({"b":[1,{"d":2,"c":[]}],"a":{}})").text(LosslessJSON::Style::pretty),
      "{\n"
      "  \"a\": {},\n"
      "  \"b\": [\n"
      "    1,\n"
      "    {\n"
      "      \"c\": [],\n"
      "      \"d\": 2\n"
      "    }\n"
      "  ]\n"
      "}");
}

TEST(LosslessJSON, TakesTheLastOfEqualKeys) {
  EXPECT_EQ(again(R"({"a":1,"a":2})"), R"({"a":2})");
}

TEST(LosslessJSON, RefusesWhatIsNoJSON) {
  for (const std::string_view text :
       {std::string_view(""), std::string_view("[1,2"), std::string_view("{,}"),
        std::string_view("01"), std::string_view("1\0", 2), std::string_view("\"\xFF\""),
        std::string_view("1 2"), std::string_view("-"), std::string_view("NaN")}) {
    EXPECT_THROW(again(text), std::invalid_argument) << text;
  }
}

TEST(LosslessJSON, RefusesTextBeyondTheLimits) {
  const std::string deepest = std::string(512, '[') + std::string(512, ']');
  EXPECT_EQ(again(deepest), deepest);
  EXPECT_THROW(again("[" + deepest + "]"), std::invalid_argument);
  EXPECT_THROW(again(std::string(1'000'000, '[')), std::invalid_argument);
  EXPECT_THROW(LosslessJSON::parse("[1,2,3,4]", {.bytes = 8, .values = 9, .depth = 9}),
               std::invalid_argument);
}

TEST(LosslessJSON, TakesValues) {
  const JSONValue value = JSONValue::Object{{"a", JSONValue::Array{1, 2.5, "x", true, nullptr}}};
  EXPECT_EQ(LosslessJSON::from(value).text(LosslessJSON::Style::compact),
            R"({"a":[1,2.5,"x",true,null]})");
  EXPECT_THROW(LosslessJSON::from("\xFF"), std::invalid_argument);
  EXPECT_THROW(LosslessJSON::from(JSONValue::Array{"\xFF"}), std::invalid_argument);
}

}  // namespace
}  // namespace quorin
