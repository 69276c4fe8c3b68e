// The dispatcher: which arguments pass, and what every failure is answered with.
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Dispatch = BridgeFixture;

TEST_F(Dispatch, RefusesEveryVerbButProbeWhileExcelIsNotRunning) {
  target_.running = false;
  const JSONValue notRunning(
      Object{{"kind", "transport"}, {"message", "Excel is not running"}, {"code", -600}});
  EXPECT_EQ(bridge_.dispatch("readCell", {}), (Bridge::Reply{false, notRunning}));
  EXPECT_EQ(bridge_.dispatch("evaluate", {}), (Bridge::Reply{false, notRunning}));
  EXPECT_EQ(bridge_.dispatch("no such verb", {}), (Bridge::Reply{false, notRunning}));
  EXPECT_EQ(bridge_.dispatch("probe", {}), (Bridge::Reply{true, Object{{"state", "notRunning"}}}));
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Dispatch, DoesNotKnowOtherVerbs) {
  EXPECT_EQ(bridge_.dispatch("ReadCell", {}),
            (Bridge::Reply{false, error("transport", "unknown verb ReadCell")}));
  EXPECT_EQ(bridge_.dispatch("", {}), (Bridge::Reply{false, error("transport", "unknown verb ")}));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR ReadCell: unknown verb", "ERROR : unknown verb"));
  EXPECT_THAT(excel_.calls(), IsEmpty());
}

TEST_F(Dispatch, SaysWhichArgumentsWereBad) {
  EXPECT_EQ(bridge_.dispatch("evaluate", {}),
            (Bridge::Reply{false, error("transport", "bad args for evaluate")}));
  EXPECT_EQ(bridge_.dispatch("evaluate", {1}),
            (Bridge::Reply{false, error("transport", "bad args for evaluate")}));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR evaluate: bad args", "ERROR evaluate: bad args"));
  EXPECT_THAT(excel_.calls(), IsEmpty());
}

struct ArgumentCase {
  const char* verb;
  JSONValue::Array args;
  bool passes;
};

std::ostream& operator<<(std::ostream& out, const ArgumentCase& example) {
  return out << example.verb << " with " << example.args.size() << " arguments, "
             << (example.passes ? "passes" : "is refused");
}

JSONValue list(JSONValue::Array items) {
  return items;
}

const JSONValue texts = list({"A1", "B2"});
const JSONValue mixed = list({"A1", 2});
const JSONValue none = list({});

const std::vector<ArgumentCase>& argumentCases() {
  static const std::vector<ArgumentCase> cases = {
      {"probe", {}, true},
      {"probe", {1, 2}, true},
      {"readCell", {}, true},
      {"readCell", {nullptr}, true},
      {"pollCell", {}, true},
      {"pollCell", {"x"}, true},
      {"workbookMap", {}, true},
      {"workbookMap", {false}, true},
      {"clearMarks", {}, true},
      {"clearMarks", {"x"}, true},

      {"evaluate", {"1+1"}, true},
      {"evaluate", {"1+1", 2}, true},
      {"evaluate", {""}, true},
      {"evaluate", {}, false},
      {"evaluate", {1}, false},
      {"evaluate", {nullptr}, false},
      {"reveal", {texts}, true},
      {"readRange", {"A1:B2", "surplus"}, true},
      {"readRange", {}, false},
      {"readRange", {texts}, false},
      {"readTexts", {texts}, true},
      {"readTexts", {JSONValue::Array(40, "A1")}, true},
      {"readTexts", {JSONValue::Array(41, "A1")}, false},
      {"readTexts", {none}, false},
      {"readTexts", {"A1"}, false},
      {"dependents", {"A1"}, true},
      {"dependents", {}, false},
      {"dependents", {true}, false},

      {"select", {texts}, true},
      {"select", {texts, 1}, true},
      {"select", {}, false},
      {"select", {"A1"}, false},
      {"select", {none}, false},
      {"select", {mixed}, false},
      {"reveal", {texts}, true},
      {"reveal", {texts, 1}, true},
      {"reveal", {none}, false},
      {"reveal", {mixed}, false},
      {"reveal", {}, false},

      {"activate", {}, true},
      {"activate", {"A1"}, true},
      {"activate", {nullptr}, true},
      {"activate", {"A1", 1}, true},
      {"activate", {1}, false},
      {"activate", {texts}, false},

      {"readFormulas", {"A1", "a1"}, true},
      {"readFormulas", {"A1", "r1c1"}, true},
      {"readFormulas", {"A1", "a1", true}, true},
      {"readFormulas", {"A1", "a1", false}, true},
      {"readFormulas", {"A1"}, false},
      {"readFormulas", {"A1", "R1C1"}, false},
      {"readFormulas", {"A1", "A1"}, false},
      {"readFormulas", {"A1", ""}, false},
      {"readFormulas", {1, "a1"}, false},
      {"readFormulas", {"A1", "a1", 1}, false},
      {"readFormulas", {"A1", "a1", nullptr}, false},
      {"readFormulas", {"A1", "a1", true, true}, false},

      {"markCells", {texts, list({255, 0, 0})}, true},
      {"markCells", {texts, list({255, 0, 0, "x"})}, true},
      {"markCells", {texts, list({255, 0.5, 0, 0})}, true},
      {"markCells", {texts, list({-9223372036854775808.0, 0, 0})}, true},
      {"markCells", {texts, list({9223372036854775808.0, 0, 0})}, false},
      {"markCells", {texts, list({255, 0})}, false},
      {"markCells", {texts, list({255, 0, 0.5})}, false},
      {"markCells", {texts, list({255, 0, 0, 0})}, false},
      {"markCells", {texts, list({255, 0, true})}, false},
      {"markCells", {texts, "red"}, false},
      {"markCells", {texts}, false},
      {"markCells", {texts, list({255, 0, 0}), 1}, false},
      {"markCells", {none, list({255, 0, 0})}, false},
      {"markCells", {mixed, list({255, 0, 0})}, false},

      {"deepEval", {texts}, true},
      {"deepEval", {none}, true},
      {"deepEval", {texts, 1}, true},
      {"deepEval", {}, false},
      {"deepEval", {"1"}, false},
      {"deepEval", {mixed}, false},
  };
  return cases;
}

// What a verb asks Excel first, "" for what is answered without it: nothing is marked here, and an
// empty plan is refused.
std::string firstHandler(const ArgumentCase& example) {
  if (example.args == JSONValue::Array{none}) return "";
  static const std::map<std::string, std::string> known = {{"probe", "qx_probe"},
                                                           {"readCell", "qx_readcell"},
                                                           {"pollCell", "qx_pollcell"},
                                                           {"workbookMap", "qx_workbookmap"},
                                                           {"clearMarks", ""},
                                                           {"evaluate", "qx_evaluate"},
                                                           {"readRange", "qx_readrange"},
                                                           {"readTexts", "qx_readtexts"},
                                                           {"readFormulas", "qx_readformulas"},
                                                           {"dependents", "qx_dependents"},
                                                           {"select", "qx_select"},
                                                           {"activate", "qx_activate"},
                                                           {"reveal", "qx_pollcell"},
                                                           {"markCells", "qx_pollcell"},
                                                           {"deepEval", "qx_deepeval"}};
  return known.at(example.verb);
}

TEST_F(Dispatch, ChecksTheArgumentsOfEveryVerb) {
  std::size_t called = 0;
  for (const ArgumentCase& example : argumentCases()) {
    const Bridge::Reply reply = bridge_.dispatch(example.verb, example.args);
    const Bridge::Reply bad{false, error("transport", std::string("bad args for ") + example.verb)};
    std::vector<std::string> asked = handlers();
    asked.erase(asked.begin(), asked.begin() + static_cast<std::ptrdiff_t>(called));
    called += asked.size();
    if (example.passes) {
      const std::string first = firstHandler(example);
      EXPECT_EQ(asked.empty() ? "" : asked.front(), first) << example;
      if (first.empty()) {
        EXPECT_TRUE(reply.ok) << example;
      }
    } else {
      EXPECT_EQ(reply, bad) << example;
      EXPECT_THAT(asked, IsEmpty()) << example;
    }
  }
}

TEST_F(Dispatch, AnswersATimeoutWithItsOwnKind) {
  timesOut("qx_readcell");
  EXPECT_EQ(bridge_.dispatch("readCell", {}),
            (Bridge::Reply{false, error("timeout", "Excel did not respond within 10s")}));
  EXPECT_THAT(log_.lines(), ElementsAre("PERF qx_readcell 10000ms",
                                        "ERROR readCell: Excel did not respond within 10s"));
}

TEST_F(Dispatch, AnswersEveryOtherExcelErrorWithTransport) {
  excel_.fails("qx_readcell", -1712, "Microsoft Excel got an error: AppleEvent timed out.");
  EXPECT_EQ(bridge_.dispatch("readCell", {}),
            (Bridge::Reply{
                false, error("transport", "Microsoft Excel got an error: AppleEvent timed out.")}));
  EXPECT_THAT(log_.lines(),
              ElementsAre("ERROR readCell: Microsoft Excel got an error: AppleEvent timed out."));
}

TEST_F(Dispatch, LogsNoValuesThatErrorsQuote) {
  const std::string conversion = "Can’t make \"12 Main Street into type x\" into type real.";
  excel_.fails("qx_readcell", -1700, conversion);
  EXPECT_EQ(bridge_.dispatch("readCell", {}),
            (Bridge::Reply{false, error("transport", conversion)}));
  excel_.fails("qx_pollcell", -2701, "Can’t divide 4711.0 by zero.");
  bridge_.dispatch("pollCell", {});
  excel_.fails("qx_activate", -1700, "4711");
  bridge_.dispatch("activate", {});
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR readCell: a value cannot be made into type real.",
                                        "ERROR pollCell: a value was to be divided by zero",
                                        "ERROR activate: a value cannot be made"));
}

TEST_F(Dispatch, LogsNamesAndAddressesWithoutTheValuesBesideThem) {
  const std::vector<std::pair<std::string, std::string>> messages = {
      {"Can’t get item 3 of {\"12 Main Street\", 4711.0}. Invalid index.",
       "Can’t get item 3 of …. Invalid index."},
      {"Can’t get character 9 of \"12 \\\"Main\\\" Street\".", "Can’t get character 9 of …."},
      {"Can't get item 1 of 4711.5.", "Can't get item 1 of …."},
      {"get {\"Secret\", 4711}.", "get …."},
      {"Can't get item 1 of -4.7E+11.", "Can't get item 1 of …."},
      {"Microsoft Excel got an error: Can’t set formula of cell \"A1\" of worksheet \"Data\" to "
       "\"=LEN(Secret)\".",
       "Microsoft Excel got an error: Can’t set formula of cell \"A1\" of worksheet \"Data\" to "
       "…."},
      {"Microsoft Excel got an error: \"LEN(Secret)\" doesn’t understand the “evaluate” message.",
       "Microsoft Excel got an error: … doesn’t understand the “evaluate” message."},
      {"{1, \"Secret\"} doesn't understand the count message.",
       "… doesn't understand the count message."},
      {"Can’t get range \"B2:C3\" of worksheet \"Sum of 2024\" of workbook \"Plan.xlsx\".",
       "Can’t get range \"B2:C3\" of worksheet \"Sum of 2024\" of workbook \"Plan.xlsx\"."},
      {"workbook not open: Plan.xlsx", "workbook not open: Plan.xlsx"},
      {"range does not exist: 'My sheet'!A1", "range does not exist: 'My sheet'!A1"}};
  for (const auto& [message, logged] : messages) excel_.fails("qx_readcell", -1728, message);
  std::vector<std::string> lines;
  for (const auto& [message, logged] : messages) {
    EXPECT_EQ(bridge_.dispatch("readCell", {}),
              (Bridge::Reply{false, error("transport", message)}));
    lines.push_back("ERROR readCell: " + logged);
  }
  EXPECT_EQ(log_.lines(), lines);
}

TEST_F(Dispatch, LogsNoValuesOfErrorsThatItPassesBy) {
  excel_.fails("qx_probe", -1728, "Can’t get item 2 of {\"Secret\"}.");
  bridge_.dispatch("probe", {});
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR probe: -1728: Can’t get item 2 of …."));
}

TEST_F(Dispatch, AnswersAShapeErrorWithItsMessage) {
  excel_.returns("qx_readcell", Array{1, 2, 3});
  EXPECT_EQ(bridge_.dispatch("readCell", {}),
            (Bridge::Reply{false, error("transport", "readCell payload has an unexpected shape")}));
  EXPECT_THAT(log_.lines(),
              ElementsAre("ERROR readCell: readCell payload has an unexpected shape"));
}

TEST_F(Dispatch, LetsNothingEscapeFromTheSystemEither) {
  target_.broken = true;
  EXPECT_EQ(bridge_.dispatch("readCell", {}),
            (Bridge::Reply{false, error("transport", "no list of processes")}));
  EXPECT_EQ(bridge_.dispatch("probe", {}), (Bridge::Reply{true, Object{{"state", "busy"}}}));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR readCell: no list of processes"));
}

TEST_F(Dispatch, GivesTheResultOfTheVerb) {
  excel_.returns("qx_pollcell", Array{"Book1", "Sheet1", "$A$1"});
  EXPECT_EQ(
      bridge_.dispatch("pollCell", {}),
      (Bridge::Reply{true, Object{{"book", "Book1"}, {"sheet", "Sheet1"}, {"addr", "$A$1"}}}));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Dispatch, HandsTheArgumentsToTheVerb) {
  excel_.returns("qx_evaluate", 2);
  excel_.returns("qx_select", "$A$1,$B$2");
  excel_.returns("qx_activate", true);
  excel_.returns("qx_pollcell", Array{"Book1", "Sheet1", "$A$1"});
  excel_.returns("qx_dependents", "");
  bridge_.dispatch("evaluate", {"1+1", "surplus"});
  bridge_.dispatch("select", {list({"A1", "B2"})});
  bridge_.dispatch("activate", {"C3"});
  bridge_.dispatch("activate", {nullptr});
  bridge_.dispatch("activate", {});
  bridge_.dispatch("dependents", {"D4"});
  using Call = fakes::FakeExcel::Call;
  Array selected;
  selected.push_back(list({"A1", "B2"}));
  EXPECT_THAT(excel_.calls(),
              ElementsAre(Call{"qx_evaluate", list({"1+1"})}, Call{"qx_select", selected},
                          Call{"qx_activate", list({"C3"})}, Call{"qx_pollcell", list({})},
                          Call{"qx_activate", list({""})}, Call{"qx_pollcell", list({})},
                          Call{"qx_activate", list({""})}, Call{"qx_pollcell", list({})},
                          Call{"qx_dependents", list({"D4"})}));
}

TEST_F(Dispatch, LooksForExcelAnewEachTime) {
  target_.running = false;
  EXPECT_FALSE(bridge_.excelRunning());
  target_.running = true;
  EXPECT_TRUE(bridge_.excelRunning());
}

}  // namespace
}  // namespace quorin
