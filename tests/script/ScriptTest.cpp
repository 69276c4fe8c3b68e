// The public face: what persists between calls, where compile errors stand, independence of names.
#include <regex>

#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

class ScriptFace : public EngineFixture {};

TEST_F(ScriptFace, KeepsPropertiesAndGlobalsBetweenCalls) {
  Script script = compiled(
      "property total : 0\nproperty seen : {}\nglobal last_\n"
      "on add(n)\nset total to total + n\nset end of seen to n\nset last_ to n\n"
      "return {total, seen, last_}\nend add");
  script.call("add", {AppleEventDescriptor::integer(2)});
  EXPECT_EQ(show(script.call("add", {AppleEventDescriptor::integer(3)})), "{5, {2, 3}, 3}");
}

TEST_F(ScriptFace, StartsAfreshInEachCompiledScript) {
  Script first = compiled("property n : 0\non bump()\nset n to n + 1\nend bump");
  first.call("bump", {});
  Script second = compiled("property n : 0\non bump()\nset n to n + 1\nend bump");
  EXPECT_EQ(show(second.call("bump", {})), "1");
  EXPECT_EQ(show(first.call("bump", {})), "2");
}

TEST_F(ScriptFace, StaysUsableAfterAnError) {
  Script script = compiled(
      "on fail_()\nset AppleScript's text item delimiters to \",\"\n"
      "considering case\nerror \"x\" number 7\nend considering\nend fail_\n"
      "on fine()\nreturn \"A\" = \"a\"\nend fine");
  EXPECT_EQ(show(script.call("fail_", {})), "error 7: x");
  EXPECT_EQ(show(script.call("fine", {})), "true");
}

TEST_F(ScriptFace, ListsItsHandlers) {
  EXPECT_EQ(compiled("on First_()\nend First_\non second_()\nend second_").handlerNames(),
            (std::vector<std::string>{"First_", "second_"}));
}

TEST_F(ScriptFace, SaysWhereACompileErrorStands) {
  const std::string source = "on f()\n  set x to 1\n  set y to (2 + \nend f\n";
  const CompileError error = compileError(source);
  EXPECT_EQ(error.line, 3);
  EXPECT_EQ(error.number, -2741);
  EXPECT_EQ(error.message, "Expected expression but found end of line.");
  EXPECT_EQ(error.offset, source.find("\nend f"));
}

TEST_F(ScriptFace, TakesArgumentsOfEveryKind) {
  Script script = compiled("on echo(a, b, c, d, e, f)\nreturn {a, b, c, d, e, f}\nend echo");
  const AppleEventDescriptor::Items arguments = {
      AppleEventDescriptor::text("t"),
      AppleEventDescriptor::integer(1),
      AppleEventDescriptor::real(1.5),
      AppleEventDescriptor::boolean(true),
      AppleEventDescriptor::missingValue(),
      AppleEventDescriptor::list({AppleEventDescriptor::list({AppleEventDescriptor::integer(1)})})};
  const ScriptOutcome outcome = script.call("echo", arguments);
  ASSERT_TRUE(outcome.result);
  EXPECT_EQ(*outcome.result, AppleEventDescriptor::list(arguments));
}

TEST_F(ScriptFace, AnswersOtherEventsWithNotHandled) {
  AppleEvent event;
  event.eventClass = fourCharCode("core");
  event.eventID = fourCharCode("getd");
  EXPECT_EQ(compiled("").call(event).error->number, -1708);
}

// The same script under other names sends the same events and gives the same results.
TEST_F(ScriptFace, DoesNotCareForNames) {
  const std::string source =
      "on alpha(beta)\ntell application \"Microsoft Excel\"\n"
      "repeat with gamma from 1 to count of beta\n"
      "set delta to range (item gamma of beta) of worksheet 1\n"
      "select delta\nend repeat\nend tell\nreturn my omega(beta)\nend alpha\n"
      "on omega(beta)\nreturn count of beta\nend omega";
  std::string renamed = source;
  for (const auto& [from, to] :
       {std::pair("alpha", "qq1"), std::pair("beta", "zork"), std::pair("gamma", "k"),
        std::pair("delta", "theThing"), std::pair("omega", "h_2")}) {
    renamed = std::regex_replace(renamed, std::regex(from), to);
  }
  const AppleEventDescriptor addresses = AppleEventDescriptor::list(
      {AppleEventDescriptor::text("A1"), AppleEventDescriptor::text("B2")});
  const auto play = [&](Script script, std::string_view handler) {
    excel.events.clear();
    excel.answer = [](const AppleEvent& event) {
      return AppleEventReply{*event.parameter(keyDirectObject), {}};
    };
    std::string record = show(script.call(handler, {addresses}));
    for (const AppleEvent& event : excel.events) record += "\n" + show(event);
    return record;
  };
  const std::string first = play(compiled(source), "alpha");
  EXPECT_EQ(first,
            "2\n"
            "core/getd{----:X117[name \"A1\"] of XwSH[indx 1]}\n"
            "misc/slct{----:X117[name \"A1\"] of XwSH[indx 1]}\n"
            "core/getd{----:X117[name \"B2\"] of XwSH[indx 1]}\n"
            "misc/slct{----:X117[name \"B2\"] of XwSH[indx 1]}");
  EXPECT_EQ(play(compiled(renamed), "qq1"), first);
}

}  // namespace
}  // namespace quorin::script
