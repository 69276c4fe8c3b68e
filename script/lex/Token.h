// The tokens of a script's text. Plain values that live as long as the compiling.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "kit/value/FourCharCode.h"
#include "script/lex/CompileError.h"

namespace quorin::script {

// Where something stands in the source.
struct Position {
  int line = 1;
  std::size_t offset = 0;
  std::size_t length = 0;
};

struct Token {
  enum class Kind {
    word,     // an identifier or a word of the language: `text` in lower case
    escaped,  // |identifier|: `text` as written between the bars
    string,   // a text literal: `text` without quotes and escapes
    integer,  // `number`, within the range of integers
    real,     // `number`
    ordinal,  // 1st, 2nd: `number`
    rawCode,  // a code in guillemets: `text` is its kind, `code` and `secondCode` its codes
    symbol,   // `text`, in one spelling each: <= >= != / and 's
    lineEnd,
    end
  };
  Kind kind = Kind::end;
  Position position;
  std::string text;
  std::string_view spelling;  // as it stands in the source
  double number = 0;
  FourCharCode code = 0;
  FourCharCode secondCode = 0;
  bool glued = false;  // follows the previous token without a blank
};

// Thrown while compiling and turned into the result of compile().
struct SyntaxError {
  CompileError error;
};

constexpr int syntaxErrorNumber = -2741;  // the text cannot be understood
constexpr int misplacedNumber = -2740;    // a word cannot go after another

[[noreturn]] inline void fail(const Position& position, std::string message,
                              int number = syntaxErrorNumber) {
  throw SyntaxError{{number, std::move(message), position.line, position.offset, position.length}};
}

}  // namespace quorin::script
