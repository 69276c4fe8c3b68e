// Random bytes, random words and damaged scripts: whatever comes, the engine gives a result or an
// error. The same inputs every time.
#include <random>

#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

class Fuzz : public EngineFixture {
 protected:
  void SetUp() override {
    excel.answer = [this](const AppleEvent&) {
      excel.events.clear();
      excel.timeouts.clear();
      switch (random_() % 6) {
        case 0:
          return AppleEventReply{};
        case 1:
          return AppleEventReply{{}, AppleEventError{-1728, "", {}}};
        case 2:
          return AppleEventReply{AppleEventDescriptor::text("$A$1"), {}};
        case 3:
          return AppleEventReply{AppleEventDescriptor::list({}), {}};
        default:
          return AppleEventReply{AppleEventDescriptor::integer(3), {}};
      }
    };
  }

  // Compiles, and runs what compiles.
  bool play(const std::string& source) {
    auto result = compile(source, applications);
    auto* script = std::get_if<Script>(&result);
    if (!script) {
      const auto& error = std::get<CompileError>(result);
      EXPECT_FALSE(error.message.empty()) << source;
      EXPECT_GE(error.line, 1) << source;
      EXPECT_LE(error.offset, source.size()) << source;
      return false;
    }
    ScriptLimits limits;
    limits.steps = 20'000;
    limits.textBytes = 1'000'000;
    limits.listItems = 10'000;
    script->setLimits(limits);
    script->run();
    for (const std::string& handler : script->handlerNames()) script->call(handler, {});
    return true;
  }

  std::minstd_rand random_{20240229};
};

TEST_F(Fuzz, RandomBytes) {
  for (int round = 0; round < 4000; ++round) {
    std::string source;
    const std::size_t size = random_() % 60;
    for (std::size_t i = 0; i < size; ++i) source += static_cast<char>(random_() % 256);
    play(source);
  }
}

TEST_F(Fuzz, RandomWords) {
  const std::vector<std::string> words = {"set",
                                          "to",
                                          "x",
                                          "y",
                                          "l",
                                          "(",
                                          ")",
                                          "{",
                                          "}",
                                          ",",
                                          "1",
                                          "2.5",
                                          "\"a\"",
                                          "of",
                                          "in",
                                          "item",
                                          "items",
                                          "thru",
                                          "every",
                                          "whose",
                                          "is",
                                          "not",
                                          "and",
                                          "or",
                                          "=",
                                          "<",
                                          "+",
                                          "-",
                                          "&",
                                          "as",
                                          "text",
                                          "list",
                                          "integer",
                                          "count",
                                          "repeat",
                                          "with",
                                          "from",
                                          "end repeat",
                                          "end",
                                          "if",
                                          "then",
                                          "else",
                                          "end if",
                                          "\n",
                                          "\n",
                                          "\n",
                                          "\n",
                                          "try",
                                          "end try",
                                          "on error",
                                          "number",
                                          "tell application \"Microsoft Excel\"",
                                          "end tell",
                                          "range",
                                          "worksheet",
                                          "name",
                                          "value",
                                          "cell",
                                          "get address",
                                          "union",
                                          "range1",
                                          "make new",
                                          "at",
                                          "with properties",
                                          "without",
                                          "exists",
                                          "my",
                                          "it",
                                          "its",
                                          "me",
                                          "'s",
                                          "a reference to",
                                          "contents",
                                          "return",
                                          "error",
                                          "copy",
                                          "end of",
                                          "beginning of",
                                          "first",
                                          "last",
                                          "some",
                                          "|q|",
                                          ":",
                                          "true",
                                          "missing value",
                                          "on f(a)",
                                          "end f",
                                          "f(",
                                          "property p :",
                                          "global g",
                                          "local v",
                                          "exit repeat",
                                          "considering case",
                                          "end considering",
                                          "with timeout of 1 second",
                                          "end timeout",
                                          "text item delimiters",
                                          "AppleScript's",
                                          "characters",
                                          "words",
                                          "after",
                                          "before",
                                          "div",
                                          "mod",
                                          "^",
                                          "contains",
                                          "starts with",
                                          "id",
                                          "named",
                                          "index",
                                          "\xC2\xAB"
                                          "class X117\xC2\xBB"};
  int compiled = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string source;
    const std::size_t size = 1 + random_() % 12;
    for (std::size_t i = 0; i < size; ++i) source += words[random_() % words.size()] + " ";
    compiled += play(source) ? 1 : 0;
  }
  EXPECT_GT(compiled, 50);  // or the words would test the compiler's first line only
}

TEST_F(Fuzz, DamagedScripts) {
  const std::string whole =
      "property seen : {}\non visit(names, how)\n set found to {}\n"
      " tell application \"Microsoft Excel\"\n  with timeout of 3 seconds\n"
      "   repeat with n in names\n    try\n     set r to range (n as text) of active sheet\n"
      "     set end of found to {get address of r row absolute false, value2 of r}\n"
      "    on error m number e\n     if e is not -1728 then error m number e\n"
      "     copy {m, e} to end of seen\n    end try\n   end repeat\n"
      "   set c to count of (every worksheet whose name contains how)\n"
      "  end timeout\n end tell\n considering case but ignoring white space\n"
      "  set t to (characters 1 thru -1 of \"a b\") as text\n end considering\n"
      " return {found, my seen, c, t & 1 + 2 * 3 ^ 2}\nend visit\n"
      "set {a, {b:c}} to {1, {b:2}}\nvisit({\"A1\", \"B2\"}, \"x\")\n";
  ASSERT_TRUE(play(whole));
  for (int round = 0; round < 6000; ++round) {
    std::string source = whole;
    for (std::size_t change = random_() % 4 + 1; change > 0; --change) {
      const std::size_t at = random_() % source.size();
      switch (random_() % 4) {
        case 0:
          source.erase(at, random_() % 20);
          break;
        case 1:
          source.insert(at, 1, static_cast<char>(random_() % 128));
          break;
        case 2:
          source.insert(at, source.substr(random_() % source.size(), random_() % 30));
          break;
        default:
          source[at] = static_cast<char>(random_() % 256);
          break;
      }
      if (source.empty()) source = " ";
    }
    play(source);
  }
}

}  // namespace
}  // namespace quorin::script
