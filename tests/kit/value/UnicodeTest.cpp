#include <gtest/gtest.h>

#include "kit/value/Unicode.h"

namespace quorin {
namespace {

TEST(Unicode, KnowsValidUTF8) {
  for (const char* text : {"", "plain", "plain text of more than eight bytes", "caf\u00E9",
                           "\U0010FFFF", "\uD7FF\uE000", "12345678\u00E9"}) {
    EXPECT_TRUE(isValidUTF8(text)) << text;
  }
  EXPECT_TRUE(isValidUTF8(std::string_view("\0", 1)));
  for (const char* text : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80",
                           "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "12345678\xFF", "a\xC3z"}) {
    EXPECT_FALSE(isValidUTF8(text)) << text;
  }
}

TEST(Unicode, Composes) {
  EXPECT_EQ(toNFC("plain"), "plain");
  EXPECT_EQ(toNFC("e\u0301"), "\u00E9");
  EXPECT_EQ(toNFC("\u1112\u1161\u11AB"), "\uD55C");   // Hangul
  EXPECT_EQ(toNFC("a\u0323\u0307"), "\u1EA1\u0307");  // marks stay in canonical order
  EXPECT_EQ(toNFC("a\u0307\u0323"), "\u1EA1\u0307");
  EXPECT_EQ(toNFC("\u0958"), "\u0915\u093C");  // excluded from composition
  EXPECT_EQ(toNFC("\uFB01"), "\uFB01");        // compatibility forms stay
  EXPECT_EQ(toNFC(std::string("\0e\u0301", 4)), std::string("\0\u00E9", 3));
  EXPECT_EQ(toNFC("e\u0301\xFF"), "e\u0301\xFF");
}

TEST(Unicode, ComparesCanonically) {
  EXPECT_TRUE(canonicallyEqual("", ""));
  EXPECT_TRUE(canonicallyEqual("a\u0307\u0323", "a\u0323\u0307"));
  EXPECT_FALSE(canonicallyEqual("\u00E9", "e"));
  EXPECT_FALSE(canonicallyEqual("\u00E9", "\u00E8"));
  EXPECT_FALSE(canonicallyEqual("e\u0301\xFF", "\u00E9\xFF"));
}

TEST(Unicode, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(caselesslyEqual("", ""));
  EXPECT_TRUE(caselesslyEqual("Data [2]", "dATA [2]"));
  EXPECT_TRUE(caselesslyEqual("\u00C4rger", "\u00E4RGER"));
  EXPECT_TRUE(caselesslyEqual("A\u0308rger", "\u00E4rger"));
  EXPECT_TRUE(caselesslyEqual("\u0394\u0416", "\u03B4\u0436"));
  EXPECT_FALSE(caselesslyEqual("Data", "Data2"));
  EXPECT_FALSE(caselesslyEqual("[", "{"));  // as far apart as the letters of either case
  EXPECT_FALSE(caselesslyEqual("\u00C4rger", "Arger"));
  EXPECT_FALSE(caselesslyEqual("\u00DF", "ss"));
  EXPECT_FALSE(caselesslyEqual("A\xFF", "a\xFF"));
}

TEST(Unicode, LeavesTheCaseOfLettersOut) {
  EXPECT_EQ(withoutCase("dATA [2]"), "data [2]");
  EXPECT_EQ(withoutCase("A\u0308RGER"), "\u00E4rger");
  EXPECT_EQ(withoutCase("\u0394\u0416"), "\u03B4\u0436");
  EXPECT_EQ(withoutCase("\u00DF"), "\u00DF");
  EXPECT_EQ(withoutCase("A\xFF"), "A\xFF");
}

TEST(Unicode, CountsGraphemes) {
  EXPECT_EQ(graphemeCount(""), 0u);
  EXPECT_EQ(graphemeCount("abc"), 3u);
  EXPECT_EQ(graphemeCount("e\u0301x"), 2u);
  EXPECT_EQ(graphemeCount("\r\n"), 1u);
  EXPECT_EQ(graphemeCount("\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), 2u);  // two flags
  EXPECT_EQ(graphemeCount("\U0001F469\u200D\U0001F4BB!"), 2u);               // a joined sequence
  EXPECT_EQ(graphemeCount("a\xFF"), std::nullopt);
}

TEST(Unicode, ConvertsToUTF16AndBack) {
  EXPECT_EQ(toUTF16("a\u00E9\U0001F600"), u"a\u00E9\U0001F600");
  EXPECT_EQ(toUTF16("\xFF"), std::nullopt);
  EXPECT_EQ(fromUTF16(u"a\u00E9\U0001F600"), "a\u00E9\U0001F600");
  const char16_t high = 0xD83D;
  const char16_t low = 0xDE00;
  EXPECT_EQ(fromUTF16({&high, 1}), std::nullopt);
  EXPECT_EQ(fromUTF16({&low, 1}), std::nullopt);
  EXPECT_EQ(fromUTF16(std::u16string{high, u'a'}), std::nullopt);
}

}  // namespace
}  // namespace quorin
