// The lexer at work: where it stands in the source, and the tokens so far. Used by tokenize()
// alone.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "script/lex/Token.h"
#include "script/terms/Words.h"

namespace quorin::script {

class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}
  std::vector<Token> run();

 private:
  char peek(std::size_t ahead = 0) const {
    return at_ + ahead < source_.size() ? source_[at_ + ahead] : '\0';
  }
  bool startsWith(std::string_view text) const { return source_.substr(at_).starts_with(text); }
  bool atLineBreak() const { return peek() == '\n' || peek() == '\r'; }
  void begin() { start_ = {line_, at_, 0}; }
  Token& add(Token::Kind kind, std::string text = {});
  [[noreturn]] void failHere(std::string message);
  void lineBreak();
  void next();
  void blockComment();
  void continueLine();
  void textLiteral();
  void escapedIdentifier();
  void number();
  bool isOrdinalSuffix() const;
  void word();
  void rawCode();
  void symbol();

  std::string_view source_;
  std::size_t at_ = 0;
  int line_ = 1;
  std::size_t endOfLast_ = 0;
  Position start_;
  std::vector<Token> tokens_;
};

}  // namespace quorin::script
