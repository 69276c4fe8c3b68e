#include <gtest/gtest.h>

#include "script/lex/Lexer.h"

namespace quorin::script {
namespace {

std::string kindName(const Token& token) {
  switch (token.kind) {
    case Token::Kind::word:
      return "word " + token.text;
    case Token::Kind::escaped:
      return "escaped " + token.text;
    case Token::Kind::string:
      return "text " + token.text;
    case Token::Kind::integer:
      return "integer " + std::string(token.spelling);
    case Token::Kind::real:
      return "real " + std::string(token.spelling);
    case Token::Kind::ordinal:
      return "ordinal " + std::string(token.spelling);
    case Token::Kind::rawCode:
      return "code " + token.text;
    case Token::Kind::symbol:
      return token.text;
    case Token::Kind::lineEnd:
      return "line end";
    case Token::Kind::end:
      return "end";
  }
  return {};
}

std::string tokens(std::string_view source) {
  std::string all;
  for (const Token& token : tokenize(source)) {
    if (token.kind == Token::Kind::end) break;
    all += (all.empty() ? "" : "; ") + kindName(token);
  }
  return all;
}

struct Case {
  const char* source;
  const char* expected;
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << each.source;
}

class Lexer : public testing::TestWithParam<Case> {};

TEST_P(Lexer, SplitsIntoTokens) {
  EXPECT_EQ(tokens(GetParam().source), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, Lexer,
    testing::Values(Case{"Set X_1 to 5", "word set; word x_1; word to; integer 5; line end"},
                    Case{"a\rb\r\nc\n\n\nd",
                         "word a; line end; word b; line end; word c; line end; word d; "
                         "line end"},
                    Case{"1 -- two\n3 # four\n5",
                         "integer 1; line end; integer 3; line end; integer 5; "
                         "line end"},
                    Case{"1 (* a (* b *) \n c *) 2", "integer 1; integer 2; line end"},
                    Case{"1 \xC2\xAC \t\n 2", "integer 1; integer 2; line end"},
                    Case{"\"a\\\"b\\\\c\\n\xC2\xAC\"", "text a\"b\\c\n\xC2\xAC; line end"},
                    Case{"|a b\\|c|", "escaped a b|c; line end"},
                    Case{
                        "12 3.5 9.9E+10 1e3 .5 536870911 536870912",
                        "integer 12; real 3.5; real 9.9E+10; real 1e3; real .5; integer 536870911; "
                        "real 536870912; line end"},
                    Case{"1st 22nd 3rd", "ordinal 1st; ordinal 22nd; ordinal 3rd; line end"},
                    Case{"a's b isn't", "word a; 's; word b; word isn't; line end"},
                    Case{"\xE2\x89\xA4 \xE2\x89\xA5 \xE2\x89\xA0 /= \xC3\xB7 <= >=",
                         "<=; >=; !=; !=; /; <=; >=; line end"},
                    Case{"\xC2\xAB"
                         "class X117\xC2\xBB \xC2\xAB"
                         "event smXL1191\xC2\xBB",
                         "code class; code event; line end"},
                    Case{"", ""}, Case{"\xEF\xBB\xBFx", "word x; line end"}));

TEST(LexerErrors, NameTheLineAndTheText) {
  try {
    tokenize("ok\nx \"abc\ndef");
    FAIL();
  } catch (const SyntaxError& failure) {
    EXPECT_EQ(failure.error.line, 2);
    EXPECT_EQ(failure.error.offset, 5U);
    EXPECT_EQ(failure.error.message, "Expected '\"' but found end of script.");
  }
}

TEST(LexerErrors, RefuseTextThatIsNotUTF8) {
  EXPECT_THROW(tokenize("set x to \"\xFF\""), SyntaxError);
}

TEST(LexerErrors, RefuseWhatIsNoToken) {
  for (const char* source : {"$", "a ; b", "(* open",
                             "\xC2\xAB"
                             "data abcd\xC2\xBB",
                             "|", "||", "\"\\q\"", "1 \xC2\xAC x", "1e999",
                             "\xC2\xAB"
                             "class toolong\xC2\xBB",
                             "\xC2\xAB"
                             "class X117"}) {
    EXPECT_THROW(tokenize(source), SyntaxError) << source;
  }
}

}  // namespace
}  // namespace quorin::script
