// Writes scripts by a grammar of the language and Excel's words: most of them compile, some are
// damaged afterwards. The same seed gives the same script.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace quorin::fuzz {

class ScriptGrammar {
 public:
  explicit ScriptGrammar(std::uint64_t seed) : random_(seed) {}

  std::string script();     // properties, handlers and statements; sometimes damaged
  std::string statement();  // one, which may hold others; ends with a line feed

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool once(std::size_t of) { return below(of) == 0; }
  template <std::size_t N>
  std::string one(const std::string_view (&choices)[N]) {
    return std::string(choices[below(N)]);
  }

  std::string block();
  std::string inLoop();
  std::string compound();
  std::string tryBlock();
  std::string handler();
  std::string expression();
  std::string operand();
  std::string literal();
  std::string listOrRecord();
  std::string textPart();
  std::string listPart();
  std::string object();
  std::string element();
  std::string key();
  std::string command();
  std::string target();
  std::string pattern();
  std::string variable();
  std::string damaged(std::string text);

  std::mt19937_64 random_;
  int depth_ = 0;
  int tells_ = 0;
  std::size_t handlers_ = 0;
};

}  // namespace quorin::fuzz
