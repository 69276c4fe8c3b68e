// Blanks, comments, words and signs, and what stands at each place.
#include "script/lex/Lexer.h"

#include "kit/value/Unicode.h"
#include "script/lex/LexerState.h"

namespace quorin::script {
namespace {

constexpr std::string_view continuation = "\xC2\xAC";  // the mark at a line's end
constexpr std::string_view noBreakSpace = "\xC2\xA0";
constexpr std::string_view openGuillemet = "\xC2\xAB";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::vector<Token> Lexer::run() {
  if (!isValidUTF8(source_)) fail({}, "The text of the script is not valid UTF-8.");
  if (source_.starts_with(byteOrderMark)) at_ = byteOrderMark.size();
  while (at_ < source_.size()) next();
  begin();
  if (!tokens_.empty() && tokens_.back().kind != Token::Kind::lineEnd) add(Token::Kind::lineEnd);
  add(Token::Kind::end);
  return std::move(tokens_);
}

Token& Lexer::add(Token::Kind kind, std::string text) {
  Token token;
  token.kind = kind;
  token.position = start_;
  token.position.length = at_ - start_.offset;
  token.spelling = source_.substr(start_.offset, token.position.length);
  token.text = std::move(text);
  token.glued = start_.offset == endOfLast_ && start_.offset > 0;
  endOfLast_ = at_;
  tokens_.push_back(std::move(token));
  return tokens_.back();
}

void Lexer::failHere(std::string message) {
  Position position = start_;
  position.length = at_ > start_.offset ? at_ - start_.offset : 1;
  fail(position, std::move(message));
}

void Lexer::lineBreak() {
  at_ += peek() == '\r' && peek(1) == '\n' ? 2 : 1;
  ++line_;
}

void Lexer::next() {
  begin();
  const char c = peek();
  if (c == ' ' || c == '\t') {
    ++at_;
  } else if (startsWith(noBreakSpace)) {
    at_ += noBreakSpace.size();
  } else if (atLineBreak()) {
    lineBreak();
    if (!tokens_.empty() && tokens_.back().kind != Token::Kind::lineEnd) {
      add(Token::Kind::lineEnd);
    }
  } else if (startsWith("--") || c == '#') {
    while (at_ < source_.size() && !atLineBreak()) ++at_;
  } else if (startsWith("(*")) {
    blockComment();
  } else if (startsWith(continuation)) {
    continueLine();
  } else if (startsWith(openGuillemet)) {
    rawCode();
  } else if (c == '"') {
    textLiteral();
  } else if (c == '|') {
    escapedIdentifier();
  } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
    number();
  } else if (isLetter(c) || c == '_') {
    word();
  } else {
    symbol();
  }
}

void Lexer::blockComment() {
  std::size_t depth = 0;
  do {
    if (at_ >= source_.size()) failHere("Expected \"*)\" but found end of script.");
    if (startsWith("(*")) {
      ++depth;
      at_ += 2;
    } else if (startsWith("*)")) {
      --depth;
      at_ += 2;
    } else if (atLineBreak()) {
      lineBreak();
    } else {
      ++at_;
    }
  } while (depth > 0);
}

void Lexer::continueLine() {
  at_ += continuation.size();
  while (peek() == ' ' || peek() == '\t' || startsWith(noBreakSpace)) {
    at_ += peek() == ' ' || peek() == '\t' ? 1 : noBreakSpace.size();
  }
  if (at_ >= source_.size()) return;
  if (!atLineBreak()) failHere("Expected end of line after the continuation mark.");
  lineBreak();
}

void Lexer::word() {
  while (isWordCharacter(peek())) ++at_;
  const bool contracted = (source_[at_ - 1] == 'n' || source_[at_ - 1] == 'N') && peek() == '\'' &&
                          lowerCase(peek(1)) == 't' && !isWordCharacter(peek(2));
  if (contracted) at_ += 2;
  add(Token::Kind::word, lowerCase(source_.substr(start_.offset, at_ - start_.offset)));
}

void Lexer::symbol() {
  struct Spelling {
    std::string_view source;
    std::string_view canonical;
  };
  static constexpr Spelling spellings[] = {{"<=", "<="},
                                           {">=", ">="},
                                           {"/=", "!="},
                                           {"\xE2\x89\xA4", "<="},
                                           {"\xE2\x89\xA5", ">="},
                                           {"\xE2\x89\xA0", "!="},
                                           {"\xC3\xB7", "/"},
                                           {"(", "("},
                                           {")", ")"},
                                           {"{", "{"},
                                           {"}", "}"},
                                           {",", ","},
                                           {":", ":"},
                                           {"+", "+"},
                                           {"-", "-"},
                                           {"*", "*"},
                                           {"/", "/"},
                                           {"^", "^"},
                                           {"&", "&"},
                                           {"=", "="},
                                           {"<", "<"},
                                           {">", ">"}};
  if (peek() == '\'' && lowerCase(peek(1)) == 's' && !isWordCharacter(peek(2))) {
    at_ += 2;
    add(Token::Kind::symbol, "'s");
    return;
  }
  for (const Spelling& each : spellings) {
    if (!startsWith(each.source)) continue;
    at_ += each.source.size();
    add(Token::Kind::symbol, std::string(each.canonical));
    return;
  }
  std::size_t length = 1;
  while ((static_cast<unsigned char>(peek(length)) & 0xC0) == 0x80) ++length;
  at_ += length;
  failHere("Expected expression but found unknown token \"" +
           std::string(source_.substr(start_.offset, length)) + "\".");
}

std::vector<Token> tokenize(std::string_view source) {
  return Lexer(source).run();
}

}  // namespace quorin::script
