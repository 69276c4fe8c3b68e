// The table of verbs: it names what the page's table names, and says of each what is so.
#include <map>
#include <regex>
#include <set>

#include "kit/bridge/Verbs.h"
#include "tests/fakes/Files.h"
#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using testing::IsEmpty;
using testing::Not;

// How long the page waits for each verb, by the name that its table has for that.
std::map<std::string, std::string> deadlinesOfThePage() {
  const std::string text =
      readFile(std::filesystem::path(QUORIN_ROOT) / "web/src/core/protocol/traits.ts");
  const std::regex row(R"(\n  (\w+): \{\s*deadline: (\w+))");
  std::map<std::string, std::string> deadlines;
  for (std::sregex_iterator found(text.begin(), text.end(), row), end; found != end; ++found)
    deadlines[(*found)[1]] = (*found)[2];
  return deadlines;
}

TEST(VerbTable, NamesTheVerbsThatThePageNamesEachOnce) {
  std::multiset<std::string> here;
  std::multiset<std::string> there;
  for (const Verb& verb : verbs()) here.emplace(verb.name);
  for (const auto& [name, deadline] : deadlinesOfThePage()) there.insert(name);
  EXPECT_EQ(here, there);
}

TEST(VerbTable, LetsNoCallTakeLongerThanThePageWaits) {
  std::map<std::string, std::string> deadlines = deadlinesOfThePage();
  EXPECT_THAT(deadlines, Not(IsEmpty()));
  for (const Verb& verb : verbs()) {
    const std::string& deadline = deadlines[std::string(verb.name)];
    if (deadline == "quickDeadline") {
      EXPECT_LE(verb.seconds, 10) << verb.name;
    } else {
      EXPECT_LE(verb.seconds, 65) << verb.name;
    }
  }
}

TEST(VerbTable, GivesTheBridgeATimeACheckAndAMethodForItsOwn) {
  for (const Verb& verb : verbs()) {
    const bool bridges = verb.answeredBy == AnsweredBy::bridge;
    EXPECT_EQ(verb.seconds > 0, bridges) << verb.name;
    EXPECT_EQ(verb.accepts != nullptr, bridges) << verb.name;
    EXPECT_EQ(verb.run != nullptr, bridges) << verb.name;
  }
}

class VerbTraits : public BridgeFixture {
 protected:
  VerbTraits() {
    excel_.returns("qx_pollcell", Array{"Plan.xlsx", "Q1", "$A$1"});
    excel_.returns("qx_activate", true);
    excel_.returns("qx_select", "$A$1");
    excel_.returns("qx_deepeval", Array{true, 1, ""});
    // What is to be shown is out of view.
    excel_.returns("qx_revealread",
                   Array{20, 11, 1, 1, "Q1", 1, 1, 40, 10, false, false, JSONValue("")});
    excel_.returns("qx_revealscroll", Array{"Plan.xlsx", "Q1", "$A$1"});
  }

  static Array argumentsOf(std::string_view verb) {
    static const std::map<std::string_view, Array> known = {
        {"evaluate", {"1"}},
        {"deepEval", {list({"1"})}},
        {"readRange", {"A1"}},
        {"readTexts", {list({"A1"})}},
        {"readFormulas", {"A1", "a1"}},
        {"dependents", {"A1"}},
        {"select", {list({"A1"})}},
        {"markCells", {list({"A1"}), list({255, 0, 255})}},
        {"reveal", {list({"A1"})}}};
    const auto found = known.find(verb);
    return found == known.end() ? Array{} : found->second;
  }
};

TEST_F(VerbTraits, SayWhichVerbsMoveTheSelection) {
  for (const Verb& verb : verbs()) {
    if (verb.answeredBy != AnsweredBy::bridge) continue;
    now_ += std::chrono::seconds(1);
    bridge_.dispatch(std::string(verb.name), argumentsOf(verb.name));
    EXPECT_EQ(bridge_.lastProgrammaticNav() == now_, verb.movesSelection) << verb.name;
  }
}

TEST_F(VerbTraits, SayWhichVerbsAnswerWithoutExcel) {
  target_.running = false;
  for (const Verb& verb : verbs()) {
    if (verb.answeredBy != AnsweredBy::bridge) continue;
    const Bridge::Reply reply = bridge_.dispatch(std::string(verb.name), argumentsOf(verb.name));
    EXPECT_EQ(reply.ok, verb.answersWithoutExcel) << verb.name;
  }
}

TEST_F(VerbTraits, LeaveTheBridgeNothingThatOthersAnswer) {
  for (const Verb& verb : verbs()) {
    if (verb.answeredBy == AnsweredBy::bridge) continue;
    const std::string name(verb.name);
    EXPECT_EQ(bridge_.dispatch(name, {}),
              (Bridge::Reply{false, error("transport", "unknown verb " + name)}));
  }
  EXPECT_THAT(handlers(), IsEmpty());
}

}  // namespace
}  // namespace quorin
