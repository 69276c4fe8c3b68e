// What a script may not do: nest without end, run without end, grow without end.
#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

class Limits : public EngineFixture {};

std::string repeated(std::string_view part, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

TEST_F(Limits, DeepNestingIsACompileError) {
  const int depth = 100'000;
  EXPECT_EQ(compileError("return " + repeated("(", depth) + "1" + repeated(")", depth)).message,
            "The script is nested too deeply.");
  EXPECT_EQ(compileError("return " + repeated("{", depth)).message,
            "The script is nested too deeply.");
  EXPECT_EQ(compileError(repeated("if true then\n", depth)).message,
            "The script is nested too deeply.");
  EXPECT_EQ(compileError("return " + repeated("item 1 of ", depth) + "x").message,
            "The script is nested too deeply.");
  EXPECT_EQ(compileError("return " + repeated("not ", depth) + "true").message,
            "The script is nested too deeply.");
  EXPECT_EQ(compileError("return " + repeated("- ", depth) + "1").number, -2741);
  EXPECT_EQ(compileError("return 1" + repeated(" + 1", depth)).message,
            "The expression is nested too deeply.");
  EXPECT_EQ(compileError("return x" + repeated("'s y", depth)).message,
            "The expression is nested too deeply.");
  EXPECT_EQ(compileError(repeated("tell me to ", depth) + "f()").message,
            "The script is nested too deeply.");
}

TEST_F(Limits, ModerateNestingCompiles) {
  EXPECT_EQ(run("return " + repeated("(", 50) + "1" + repeated(")", 50)), "1");
  EXPECT_EQ(run("return 1" + repeated(" + 1", 400)), "401");
}

TEST_F(Limits, HugeLiteralsAreKept) {
  const std::string text(3'000'000, 'x');
  EXPECT_EQ(run("return length of \"" + text + "\""), "3000000");
  EXPECT_EQ(run("return 1" + std::string(200, '0')), "1.0E+200");
  EXPECT_EQ(run("return " + std::string(100, '0') + "7"), "7");
}

TEST_F(Limits, StepsEndALoop) {
  Script script = compiled("on spin()\nrepeat\ntry\nset x to 1\nend try\nend repeat\nend spin");
  ScriptLimits limits;
  limits.steps = 10'000;
  script.setLimits(limits);
  EXPECT_EQ(show(script.call("spin", {})), "error -128: User canceled.");
}

TEST_F(Limits, TextAndListsStopGrowing) {
  Script script = compiled(
      "on text_()\nset s to \"x\"\nrepeat\nset s to s & s\nend repeat\nend text_\n"
      "on list_()\nset l to {1}\nrepeat\nset l to l & l\nend repeat\nend list_\n"
      "on push()\nset l to {}\nrepeat\nset end of l to 1\nend repeat\nend push");
  ScriptLimits limits;
  limits.textBytes = 100'000;
  limits.listItems = 10'000;
  script.setLimits(limits);
  for (const char* handler : {"text_", "list_", "push"}) {
    EXPECT_EQ(show(script.call(handler, {})), "error -108: Out of memory.") << handler;
  }
}

TEST_F(Limits, DeepListsAreFreedAndRefusedInMessages) {
  EXPECT_EQ(run("set l to {}\nrepeat 200000 times\nset l to {l}\nend repeat\nreturn 1"), "1");
  EXPECT_EQ(run("set l to {}\nrepeat 200000 times\nset l to {l}\nend repeat\nreturn l"),
            "error -2706: Stack overflow.");
  EXPECT_EQ(run("set l to {}\nrepeat 5000 times\nset l to {l}\nend repeat\ncopy l to m"),
            "error -2706: Stack overflow.");
  EXPECT_EQ(run("set l to {}\nset m to {}\nrepeat 5000 times\nset l to {l}\nset m to {m}\n"
                "end repeat\nreturn l = m"),
            "error -2706: Stack overflow.");
}

TEST_F(Limits, AListThatHoldsItselfIsHarmless) {
  EXPECT_EQ(run("set l to {1}\nset end of l to l\nreturn count of l"), "2");
  EXPECT_EQ(run("set l to {1}\nset end of l to l\nreturn l"), "error -2706: Stack overflow.");
  EXPECT_EQ(run("set r to {a:1}\nset a of r to {r}\nreturn length of r"), "1");
  EXPECT_EQ(run("set l to {1, 2}\nrepeat with x in l\nset end of l to x\nend repeat\nreturn l"),
            "{1, 2, 1, 2}");
  // More than two thousand million parts in a few shared lists.
  EXPECT_EQ(run("set l to {1}\nrepeat 31 times\nset l to {l, l}\nend repeat\nreturn l"),
            "error -108: Out of memory.");
}

TEST_F(Limits, DeepObjectsAreRefused) {
  EXPECT_EQ(tell("set r to a reference to cell 1\nrepeat 1000 times\n"
                 "set r to a reference to cell 1 of r\nend repeat"),
            "error -2706: Stack overflow.");
}

}  // namespace
}  // namespace quorin::script
