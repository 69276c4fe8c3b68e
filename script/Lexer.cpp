#include "script/Lexer.h"

#include <cmath>

#include "kit/value/Unicode.h"
#include "script/Numbers.h"
#include "script/Words.h"

namespace quorin::script {
namespace {

constexpr std::string_view continuation = "\xC2\xAC";  // the mark at a line's end
constexpr std::string_view noBreakSpace = "\xC2\xA0";
constexpr std::string_view openGuillemet = "\xC2\xAB";
constexpr std::string_view closeGuillemet = "\xC2\xBB";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}

  std::vector<Token> run() {
    if (!isValidUTF8(source_)) fail({}, "The text of the script is not valid UTF-8.");
    if (source_.starts_with(byteOrderMark)) at_ = byteOrderMark.size();
    while (at_ < source_.size()) next();
    begin();
    if (!tokens_.empty() && tokens_.back().kind != Token::Kind::lineEnd) add(Token::Kind::lineEnd);
    add(Token::Kind::end);
    return std::move(tokens_);
  }

 private:
  char peek(std::size_t ahead = 0) const {
    return at_ + ahead < source_.size() ? source_[at_ + ahead] : '\0';
  }
  bool startsWith(std::string_view text) const { return source_.substr(at_).starts_with(text); }
  bool atLineBreak() const { return peek() == '\n' || peek() == '\r'; }

  void begin() { start_ = {line_, at_, 0}; }

  Token& add(Token::Kind kind, std::string text = {}) {
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

  [[noreturn]] void failHere(std::string message) {
    Position position = start_;
    position.length = at_ > start_.offset ? at_ - start_.offset : 1;
    fail(position, std::move(message));
  }

  void lineBreak() {
    at_ += peek() == '\r' && peek(1) == '\n' ? 2 : 1;
    ++line_;
  }

  void next() {
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

  void blockComment() {
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

  void continueLine() {
    at_ += continuation.size();
    while (peek() == ' ' || peek() == '\t' || startsWith(noBreakSpace)) {
      at_ += peek() == ' ' || peek() == '\t' ? 1 : noBreakSpace.size();
    }
    if (at_ >= source_.size()) return;
    if (!atLineBreak()) failHere("Expected end of line after the continuation mark.");
    lineBreak();
  }

  void textLiteral() {
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

  void escapedIdentifier() {
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

  void number() {
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

  bool isOrdinalSuffix() const {
    if (isWordCharacter(peek(2))) return false;
    const std::string suffix = lowerCase(source_.substr(at_, 2));
    return suffix == "st" || suffix == "nd" || suffix == "rd" || suffix == "th";
  }

  void word() {
    while (isWordCharacter(peek())) ++at_;
    const bool contracted = (source_[at_ - 1] == 'n' || source_[at_ - 1] == 'N') &&
                            peek() == '\'' && lowerCase(peek(1)) == 't' &&
                            !isWordCharacter(peek(2));
    if (contracted) at_ += 2;
    add(Token::Kind::word, lowerCase(source_.substr(start_.offset, at_ - start_.offset)));
  }

  void rawCode() {
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
    if ((kind != "class" && kind != "property" && !twoCodes) ||
        code.size() != (twoCodes ? 8U : 4U)) {
      failHere("This raw code is not supported: only class, property, constant and event codes.");
    }
    Token& token = add(Token::Kind::rawCode, kind);
    token.code = codeOf(code.substr(0, 4));
    if (twoCodes) token.secondCode = codeOf(code.substr(4));
  }

  void symbol() {
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

  std::string_view source_;
  std::size_t at_ = 0;
  int line_ = 1;
  std::size_t endOfLast_ = 0;
  Position start_;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> tokenize(std::string_view source) {
  return Lexer(source).run();
}

}  // namespace quorin::script
