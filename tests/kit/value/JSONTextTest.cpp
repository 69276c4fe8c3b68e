#include <gtest/gtest.h>
#include <string>

#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

JSONValue parsed(std::string_view text) {
  const ParsedJSON result = parseJSON(text);
  EXPECT_TRUE(result) << result.error;
  return result.value.value_or("failed");
}

std::string error(std::string_view text) {
  const ParsedJSON result = parseJSON(text);
  EXPECT_FALSE(result) << text;
  EXPECT_FALSE(result.value || result.error.empty());
  return result.error;
}

TEST(JSONText, ReadsEveryCase) {
  EXPECT_EQ(parsed("true"), JSONValue(true));
  EXPECT_EQ(parsed("1"), JSONValue(1.0));
  EXPECT_EQ(parsed("\"a\""), JSONValue("a"));
  EXPECT_EQ(parsed("null"), JSONValue());
  EXPECT_EQ(parsed(R"( [ 1 , "a" , null , {"on":true} ] )"),
            JSONValue(Array{1, "a", nullptr, Object{{"on", true}}}));
  EXPECT_EQ(parsed("[]"), JSONValue(Array{}));
  EXPECT_EQ(parsed("{}"), JSONValue(Object{}));
}

TEST(JSONText, ReadsEveryNumberAsTheNearestDouble) {
  EXPECT_EQ(parsed("-0"), JSONValue(0));
  EXPECT_EQ(parsed("-12"), JSONValue(-12));
  EXPECT_EQ(parsed("4294967296"), JSONValue(4294967296.0));
  EXPECT_EQ(parsed("18446744073709551615"), JSONValue(18446744073709551616.0));
  EXPECT_EQ(parsed("-9223372036854775808"), JSONValue(-9223372036854775808.0));
  EXPECT_EQ(parsed("123456789012345678901234567890"), JSONValue(123456789012345678901234567890.0));
  EXPECT_EQ(parsed("0.1"), JSONValue(0.1));
  EXPECT_EQ(parsed("2.2250738585072014e-308"), JSONValue(2.2250738585072014e-308));
}

TEST(JSONText, ReadsEscapes) {
  EXPECT_EQ(parsed(R"("\u00e9\n\/\ud83d\ude00")"), JSONValue("\u00E9\n/\U0001F600"));
  EXPECT_EQ(parsed(R"("a\u0000b")"), JSONValue(std::string("a\0b", 3)));
}

TEST(JSONText, TakesTheLastOfEqualKeys) {
  EXPECT_EQ(parsed(R"({"a":1,"a":[2]})"), JSONValue(Object{{"a", Array{2}}}));
}

TEST(JSONText, SkipsAByteOrderMark) {
  EXPECT_EQ(parsed("\xEF\xBB\xBF[1]"), JSONValue(Array{1}));
}

TEST(JSONText, RefusesWhatIsNoJSON) {
  for (const char* text :
       {"", " ", "[1,2", "[1,]", "{\"a\"}", "{a:1}", "'a'", "NaN", "Infinity", "01", "1 2", "[1]x",
        "tru", "\"\n\"", "\"\\x\"", "// c\n1", "1e999", "\"\\ud800\""}) {
    EXPECT_NE(error(text), "") << text;
  }
}

TEST(JSONText, RefusesAZeroByteAfterTheValue) {
  EXPECT_NE(error(std::string_view("1\0", 2)), "");
  EXPECT_NE(error(std::string_view("1\0 2", 4)), "");
  EXPECT_NE(error(std::string_view("[1,\0 2]", 7)), "");
}

TEST(JSONText, RefusesInvalidUTF8) {
  EXPECT_EQ(error("\"\xFF\""), "The JSON text is not valid UTF-8.");
  EXPECT_EQ(error("\"\xC0\xAF\""), "The JSON text is not valid UTF-8.");
  EXPECT_EQ(error("\"\xED\xA0\x80\""), "The JSON text is not valid UTF-8.");
}

TEST(JSONText, TellsWhereTheErrorIs) {
  EXPECT_EQ(parseJSON("[1,x]").offset, 3u);
  EXPECT_EQ(parseJSON("\xEF\xBB\xBF[1,x]").offset, 6u);
}

TEST(JSONText, ReadsToTheMaximumDepthAndNoFurther) {
  const std::string deepest = std::string(512, '[') + std::string(512, ']');
  const JSONValue value = parsed(deepest);
  EXPECT_EQ(Marshal::encode(value), deepest);
  EXPECT_EQ(error("[" + deepest + "]"), "The JSON text is nested more than 512 levels deep.");
}

TEST(JSONText, RefusesAMillionLevelsOfEitherKind) {
  EXPECT_EQ(error(std::string(1'000'000, '[')),
            "The JSON text is nested more than 512 levels deep.");
  std::string objects;
  for (int i = 0; i < 100'000; ++i) objects += "{\"a\":";
  EXPECT_EQ(error(objects), "The JSON text is nested more than 512 levels deep.");
}

TEST(JSONText, RefusesTooLongText) {
  const JSONLimits limits{.bytes = 10, .values = 100, .depth = 5};
  EXPECT_TRUE(parseJSON("\"12345678\"", limits));
  EXPECT_EQ(parseJSON("\"123456789\"", limits).error, "The JSON text is longer than 10 bytes.");
}

TEST(JSONText, RefusesTooManyValues) {
  const JSONLimits limits{.bytes = 100, .values = 4, .depth = 5};
  EXPECT_TRUE(parseJSON("[1,[2]]", limits));
  EXPECT_EQ(parseJSON("[1,[2],3]", limits).error, "The JSON text holds more than 4 values.");
}

}  // namespace
}  // namespace quorin
