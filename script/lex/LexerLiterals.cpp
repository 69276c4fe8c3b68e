// Texts, numbers, escaped names and raw codes.
#include <cmath>

#include "script/lex/LexerState.h"
#include "script/lex/Numbers.h"

namespace quorin::script {
namespace {

constexpr std::string_view openGuillemet = "\xC2\xAB";
constexpr std::string_view closeGuillemet = "\xC2\xBB";

}  // namespace

void Lexer::textLiteral() {
  std::string text;
  ++at_;
  while (peek() != '"') {
    if (at_ >= source_.size()) failHere("Expected '\"' but found end of script.");
    if (peek() == '\\') {
      ++at_;
      switch (peek()) {
        case 'n':
          text += '\n';
          break;
        case 'r':
          text += '\r';
          break;
        case 't':
          text += '\t';
          break;
        case '"':
        case '\\':
          text += peek();
          break;
        default:
          failHere("Expected an escaped character after the backslash.");
      }
      ++at_;
    } else if (atLineBreak()) {
      const std::size_t from = at_;
      lineBreak();
      text += source_.substr(from, at_ - from);
    } else {
      text += source_[at_++];
    }
  }
  ++at_;
  add(Token::Kind::string, std::move(text));
}

void Lexer::escapedIdentifier() {
  std::string text;
  ++at_;
  while (peek() != '|') {
    if (at_ >= source_.size() || atLineBreak()) failHere("Expected \"|\" but found end of line.");
    if (peek() == '\\' && at_ + 1 < source_.size()) ++at_;
    text += source_[at_++];
  }
  ++at_;
  if (text.empty()) failHere("Expected a name between the bars.");
  add(Token::Kind::escaped, std::move(text));
}

void Lexer::number() {
  bool integral = true;
  while (isDigit(peek())) ++at_;
  if (peek() == '.' && isDigit(peek(1))) {
    integral = false;
    ++at_;
    while (isDigit(peek())) ++at_;
  }
  const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 2 : 1;
  if ((peek() == 'e' || peek() == 'E') && isDigit(peek(sign))) {
    integral = false;
    at_ += sign;
    while (isDigit(peek())) ++at_;
  }
  const std::string_view text = source_.substr(start_.offset, at_ - start_.offset);
  const double value = parseDecimal(text).value_or(HUGE_VAL);
  if (!std::isfinite(value)) failHere("The number is too large.");
  if (integral && isOrdinalSuffix()) {
    at_ += 2;
    add(Token::Kind::ordinal).number = value;
    return;
  }
  if (isWordCharacter(peek())) failHere("A number can't be followed by a letter.");
  const bool integer = integral && std::abs(value) <= maximumInteger;
  add(integer ? Token::Kind::integer : Token::Kind::real).number = value;
}

bool Lexer::isOrdinalSuffix() const {
  if (isWordCharacter(peek(2))) return false;
  const std::string suffix = lowerCase(source_.substr(at_, 2));
  return suffix == "st" || suffix == "nd" || suffix == "rd" || suffix == "th";
}

void Lexer::rawCode() {
  at_ += openGuillemet.size();
  const std::size_t from = at_;
  const std::size_t close = source_.find(closeGuillemet, from);
  const std::string_view inside = source_.substr(from, close - from);
  if (close == std::string_view::npos || inside.find_first_of("\r\n") != inside.npos) {
    failHere("Expected \"\xC2\xBB\" but found end of line.");
  }
  at_ = close + closeGuillemet.size();
  const std::size_t blank = inside.find(' ');
  const std::string kind = lowerCase(inside.substr(0, blank));
  const std::string_view code =
      blank == std::string_view::npos ? std::string_view() : inside.substr(blank + 1);
  const bool twoCodes = kind == "event" || kind == "constant";
  if ((kind != "class" && kind != "property" && !twoCodes) || code.size() != (twoCodes ? 8U : 4U)) {
    failHere("This raw code is not supported: only class, property, constant and event codes.");
  }
  Token& token = add(Token::Kind::rawCode, kind);
  token.code = codeOf(code.substr(0, 4));
  if (twoCodes) token.secondCode = codeOf(code.substr(4));
}

}  // namespace quorin::script
