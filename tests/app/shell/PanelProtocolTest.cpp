#include "kit/bridge/Verbs.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Object = JSONValue::Object;
using Array = JSONValue::Array;

class PanelProtocolTest : public ShellFixture {
 protected:
  PanelProtocolTest() : panel(makePanel()) {
    platform.webView().finishLoading();
    takeJournal();
  }

  void post(const JSONValue& body) { platform.webView().post(body); }
  // What the page gets for a request at once.
  std::vector<std::string> scriptsFor(const JSONValue& body) {
    post(body);
    return platform.webView().takeScripts();
  }
  std::vector<std::string> scriptsFor(const char* verb, Array args) {
    return scriptsFor(Object{{"id", 1}, {"verb", verb}, {"args", std::move(args)}});
  }
  std::filesystem::path config() const { return folder / "config.json"; }

  const std::string done = R"(window.__qxResolve(1, {"ok":true,"payload":null}))";
  static std::string refused(const std::string& text) {
    return R"(window.__qxResolve(1, {"ok":false,"payload":")" + text + "\"})";
  }
  std::unique_ptr<Panel> panel;
};

TEST_F(PanelProtocolTest, AnswersAMissingVerb) {
  const std::string reply = R"(window.__qxResolve(7, {"ok":false,"payload":{"kind":"transport",)"
                            R"("message":"missing verb"}}))";
  EXPECT_THAT(scriptsFor(Object{{"id", 7}, {"verb", ""}}), ElementsAre(reply));
  EXPECT_THAT(scriptsFor(Object{{"id", 7}}), ElementsAre(reply));
  EXPECT_THAT(scriptsFor(Object{{"id", 7}, {"verb", 3}}), ElementsAre(reply));
  EXPECT_THAT(scriptsFor(Object{{"id", 7}, {"verb", nullptr}}), ElementsAre(reply));
}

TEST_F(PanelProtocolTest, DropsWhatCannotBeAnswered) {
  const JSONValue bodies[] = {
      nullptr,
      true,
      7,
      "log",
      Array{Object{{"id", 1}, {"verb", "log"}}},
      Object{},
      Object{{"verb", "getHighlightColor"}},
      Object{{"id", "1"}, {"verb", "getHighlightColor"}},
      Object{{"id", true}, {"verb", "getHighlightColor"}},
      Object{{"id", nullptr}, {"verb", ""}},
      Object{{"id", Array{1}}, {"verb", ""}},
  };
  for (const JSONValue& body : bodies) {
    EXPECT_THAT(scriptsFor(body), IsEmpty());
  }
  settle();
  EXPECT_THAT(platform.journal, IsEmpty());
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(PanelProtocolTest, EchoesTheIdAsANumber) {
  EXPECT_THAT(scriptsFor(Object{{"id", 12345678}, {"verb", "log"}}),
              ElementsAre(HasSubstr("(12345678, ")));
  EXPECT_THAT(scriptsFor(Object{{"id", 1.5}, {"verb", "log"}}), ElementsAre(HasSubstr("(1.5, ")));
  EXPECT_THAT(scriptsFor(Object{{"id", -3}, {"verb", "log"}}), ElementsAre(HasSubstr("(-3, ")));
}

TEST_F(PanelProtocolTest, WritesThePagesLogLines) {
  EXPECT_THAT(scriptsFor("log", {"PERF", "readCell 12 ms", "more"}), ElementsAre(done));
  EXPECT_THAT(logged(), ElementsAre("PERF readCell 12 ms"));
}

TEST_F(PanelProtocolTest, IgnoresMalformedLogLines) {
  EXPECT_THAT(scriptsFor("log", {}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("log", {"PERF"}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("log", {"PERF", 12}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("log", {12, "PERF"}), ElementsAre(done));
  EXPECT_THAT(scriptsFor(Object{{"id", 1}, {"verb", "log"}, {"args", "PERF"}}), ElementsAre(done));
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(PanelProtocolTest, GivesTheDefaultColourWithoutAConfiguration) {
  EXPECT_THAT(scriptsFor("getHighlightColor", {}),
              ElementsAre(R"(window.__qxResolve(1, {"ok":true,"payload":[255,0,255]}))"));
  writeFile(config(), "not JSON");
  EXPECT_THAT(scriptsFor("getHighlightColor", {"ignored"}),
              ElementsAre(R"(window.__qxResolve(1, {"ok":true,"payload":[255,0,255]}))"));
}

TEST_F(PanelProtocolTest, GivesTheStoredColourInItsOrder) {
  writeFile(config(), R"({"highlightRGB": [1, 20, 0]})");
  EXPECT_THAT(scriptsFor("getHighlightColor", {}),
              ElementsAre(R"(window.__qxResolve(1, {"ok":true,"payload":[1,20,0]}))"));
}

TEST_F(PanelProtocolTest, SavesAColourAndNothingElse) {
  writeFile(config(), R"({"pollMs": 400, "mine": {"a": [1]}})");
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{255, 128, 0}}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("getHighlightColor", {}),
              ElementsAre(R"(window.__qxResolve(1, {"ok":true,"payload":[255,128,0]}))"));
  EXPECT_THAT(readFile(config()), HasSubstr("\"pollMs\": 400"));
  EXPECT_THAT(readFile(config()), HasSubstr("\"mine\""));
}

TEST_F(PanelProtocolTest, KeepsThatTheFirstCardWasDismissedAndNothingElse) {
  writeFile(config(), R"({"pollMs": 400, "mine": {"a": [1]}})");
  const char* no = R"(window.__qxResolve(1, {"ok":true,"payload":false}))";
  const char* yes = R"(window.__qxResolve(1, {"ok":true,"payload":true}))";
  EXPECT_THAT(scriptsFor("isWelcomed", {}), ElementsAre(no));
  EXPECT_THAT(scriptsFor("setWelcomed", {}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("isWelcomed", {}), ElementsAre(yes));
  EXPECT_THAT(readFile(config()), HasSubstr("\"pollMs\": 400"));
  EXPECT_THAT(readFile(config()), HasSubstr("\"mine\""));
}

TEST_F(PanelProtocolTest, LeavesAMalformedConfigurationAsItIsWhenTheCardIsDismissed) {
  writeFile(config(), "not JSON");
  EXPECT_THAT(scriptsFor("setWelcomed", {}), ElementsAre(refused("could not save config")));
  EXPECT_EQ(readFile(config()), "not JSON");
}

TEST_F(PanelProtocolTest, PassesOverComponentsThatAreNoWholeNumbers) {
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{1.5, 2, 3, 4}}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("getHighlightColor", {}), ElementsAre(HasSubstr("[2,3,4]")));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{255, 0.5, "9", true, 0, nullptr, 0}}),
              ElementsAre(done));
  EXPECT_THAT(scriptsFor("getHighlightColor", {}), ElementsAre(HasSubstr("[255,0,0]")));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{1e19, 0, 0, 0}}), ElementsAre(done))
      << "too large for an integer of 64 bits, so passed over";
}

TEST_F(PanelProtocolTest, RefusesColoursOfTheWrongCountOrRange) {
  const std::string text = refused("rgb must be three 0\u2026255 integers");
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{256, 0, 0}}), ElementsAre(text));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{0, -1, 0}}), ElementsAre(text));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{1, 2}}), ElementsAre(text));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{1, 2, 3, 4}}), ElementsAre(text));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{}}), ElementsAre(text));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{255, 0.5, 0}}), ElementsAre(text));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{1e18, 0, 0}}), ElementsAre(text));
  EXPECT_FALSE(std::filesystem::exists(config()));
}

TEST_F(PanelProtocolTest, RefusesAColourThatIsNoList) {
  EXPECT_THAT(scriptsFor("setHighlightColor", {"x"}), ElementsAre(refused("bad args")));
  EXPECT_THAT(scriptsFor("setHighlightColor", {}), ElementsAre(refused("bad args")));
  EXPECT_THAT(scriptsFor("setHighlightColor", {Object{}}), ElementsAre(refused("bad args")));
}

TEST_F(PanelProtocolTest, SaysThatAColourCouldNotBeSaved) {
  writeFile(config(), "[1,2");
  EXPECT_THAT(scriptsFor("setHighlightColor", {Array{1, 2, 3}}),
              ElementsAre(refused("could not save config")));
  EXPECT_EQ(readFile(config()), "[1,2");
  EXPECT_THAT(logged(), ElementsAre("ERROR setHighlightColor save failed: config.json is not valid "
                                    "JSON; left untouched"));
}

TEST_F(PanelProtocolTest, SetsThePanelsWidth) {
  EXPECT_THAT(scriptsFor("setPanelWidth", {true}), ElementsAre(done));
  EXPECT_EQ(platform.window().currentFrame.width, 800);
  EXPECT_THAT(scriptsFor("setPanelWidth", {"false"}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("setPanelWidth", {0}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("setPanelWidth", {}), ElementsAre(done));
  EXPECT_EQ(platform.window().currentFrame.width, 800);
  EXPECT_THAT(scriptsFor("setPanelWidth", {false}), ElementsAre(done));
  EXPECT_EQ(platform.window().currentFrame.width, 460);
}

TEST_F(PanelProtocolTest, HidesThePanelAndKeepsItHidden) {
  panel->showCompanion();
  takeJournal();
  post(Object{{"id", 1}, {"verb", "hidePanel"}});
  EXPECT_THAT(takeJournal(), ElementsAre("orderOut", "evaluate " + done));
  EXPECT_FALSE(panel->enabled());
}

TEST_F(PanelProtocolTest, GivesTheKeyboardToExcel) {
  platform.workspace().running = {excel()};
  panel->summon();
  takeJournal();
  post(Object{{"id", 1}, {"verb", "focusExcel"}});
  EXPECT_THAT(takeJournal(),
              ElementsAre("activate 4711", "resignKey", "orderFront", "evaluate " + done));
}

TEST_F(PanelProtocolTest, PassesTheArgumentSeparatorOnInTheOrderOfTheBridge) {
  post(Object{{"id", 1}, {"verb", "readCell"}});
  EXPECT_THAT(scriptsFor("setConventions", {Object{{"arg", ";"}}}), ElementsAre(done));
  EXPECT_THAT(takeJournal(), ElementsAre("evaluate " + done)) << "answered before it is done";
  post(Object{{"id", 2}, {"verb", "evaluate"}, {"args", Array{"1"}}});
  queue.runAll();
  EXPECT_THAT(takeJournal(),
              ElementsAre("dispatch readCell []", "argSeparator ;", R"(dispatch evaluate ["1"])"));
}

TEST_F(PanelProtocolTest, IgnoresMalformedConventions) {
  EXPECT_THAT(scriptsFor("setConventions", {}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("setConventions", {";"}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("setConventions", {Object{}}), ElementsAre(done));
  EXPECT_THAT(scriptsFor("setConventions", {Object{{"arg", 1}}}), ElementsAre(done));
  EXPECT_EQ(queue.waiting(), 0u);
}

TEST_F(PanelProtocolTest, AsksTheBridgeOnItsQueueAndRepliesOnTheMainThread) {
  bridge.replies["readCell"] = {true, Object{{"addr", "$A$1"}}};
  EXPECT_THAT(scriptsFor("readCell", {}), IsEmpty());
  EXPECT_THAT(takeJournal(), IsEmpty());
  queue.runAll();
  EXPECT_THAT(takeJournal(), ElementsAre("dispatch readCell []"));
  platform.mainLoop().runPosted();
  // Slashes are escaped by the encoder; nothing else in an address needs it.
  EXPECT_THAT(takeJournal(), ElementsAre(R"(evaluate window.__qxResolve(1, {"ok":true,"payload":)"
                                         R"({"addr":"$A$1"}}))"));
}

TEST_F(PanelProtocolTest, PassesFailuresOfTheBridgeOn) {
  bridge.replies["nonsense"] = {false, Object{{"kind", "transport"}, {"message", "unknown"}}};
  post(Object{{"id", 9}, {"verb", "nonsense"}, {"args", Array{1, "x", nullptr}}});
  settle();
  EXPECT_THAT(takeJournal(), ElementsAre(R"(dispatch nonsense [1,"x",null])",
                                         R"(evaluate window.__qxResolve(9, {"ok":false,"payload":)"
                                         R"({"kind":"transport","message":"unknown"}}))"));
}

TEST_F(PanelProtocolTest, TakesArgumentsThatAreNoListAsNone) {
  for (const JSONValue& args : {JSONValue("x"), JSONValue(Object{}), JSONValue(1)}) {
    post(Object{{"id", 1}, {"verb", "readCell"}, {"args", args}});
  }
  queue.runAll();
  EXPECT_THAT(takeJournal(), testing::Each("dispatch readCell []"));
}

TEST_F(PanelProtocolTest, ComparesVerbsLetterByLetter) {
  post(Object{{"id", 1}, {"verb", "Log"}});
  post(Object{{"id", 2}, {"verb", "log "}});
  queue.runAll();
  EXPECT_THAT(takeJournal(), ElementsAre("dispatch Log []", "dispatch log  []"));
}

TEST_F(PanelProtocolTest, AsksTheBridgeWhatTheTableLeavesToIt) {
  panel->setOnApplicationVerb([](const std::string&, const Array&) {
    return PanelBridge::Reply{true, nullptr};
  });
  for (const Verb& verb : verbs()) {
    post(Object{{"id", 1}, {"verb", std::string(verb.name)}});
    queue.runAll();
    const bool asked = verb.answeredBy == AnsweredBy::bridge;
    EXPECT_EQ(takeJournal() == Journal{"dispatch " + std::string(verb.name) + " []"}, asked)
        << verb.name;
  }
}

TEST_F(PanelProtocolTest, LeavesTheApplicationsVerbsToTheBridgeWhileNobodyAnswersThem) {
  post(Object{{"id", 1}, {"verb", "getSettings"}});
  queue.runAll();
  EXPECT_THAT(takeJournal(), ElementsAre("dispatch getSettings []"));
}

TEST_F(PanelProtocolTest, AnswersBridgeVerbsInTheOrderOfTheirRequests) {
  for (const char* verb : {"A", "B", "C"})
    post(Object{{"id", static_cast<int>(*verb)}, {"verb", verb}});
  EXPECT_THAT(scriptsFor("log", {"T", "m"}), ElementsAre(done)) << "answered before them";
  settle();
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre(HasSubstr("(65, "), HasSubstr("(66, "), HasSubstr("(67, ")));
}

TEST_F(PanelProtocolTest, HoldsEventsUntilThePageHasLoaded) {
  panel = makePanel();
  panel->sendEvent("first", 1);
  panel->sendEvent("second", "two");
  EXPECT_THAT(platform.webView().takeScripts(), IsEmpty());
  platform.webView().finishLoading();
  EXPECT_THAT(platform.webView().takeScripts(),
              ElementsAre(R"(window.__qxEvent && window.__qxEvent("first", 1))",
                          R"(window.__qxEvent && window.__qxEvent("second", "two"))"));
  platform.webView().finishLoading();
  EXPECT_THAT(platform.webView().takeScripts(), IsEmpty()) << "each is delivered once";
}

TEST_F(PanelProtocolTest, HoldsEventsDuringAReload) {
  platform.webView().delegate->webViewDidStartProvisionalNavigation();
  panel->sendEvent("held", Object{});
  EXPECT_THAT(platform.webView().takeScripts(), IsEmpty());
  platform.webView().delegate->webViewDidFinishNavigation();
  EXPECT_THAT(platform.webView().takeScripts(), testing::SizeIs(1));
}

TEST_F(PanelProtocolTest, HoldsEventsAgainWhoseDeliveryFindsThePageGone) {
  FakeWebView& view = platform.webView();
  view.delegate->webViewDidStartProvisionalNavigation();
  for (int i = 1; i <= 3; ++i) panel->sendEvent("e", i);
  view.onEvaluate = [&](const std::string&) {
    view.onEvaluate = nullptr;
    view.delegate->webViewDidStartProvisionalNavigation();
  };
  view.delegate->webViewDidFinishNavigation();
  EXPECT_THAT(view.takeScripts(), ElementsAre(HasSubstr("(\"e\", 1)")));
  panel->sendEvent("e", 4);
  view.delegate->webViewDidFinishNavigation();
  EXPECT_THAT(view.takeScripts(), ElementsAre(HasSubstr("(\"e\", 2)"), HasSubstr("(\"e\", 3)"),
                                              HasSubstr("(\"e\", 4)")));
}

TEST_F(PanelProtocolTest, EncodesWhatWouldEndTheScript) {
  panel->sendEvent("a\"b", Object{{"t", "</script>\u2028\n"}});
  EXPECT_THAT(platform.webView().takeScripts(), ElementsAre(HasSubstr(R"(("a\"b", )")));
}

TEST_F(PanelProtocolTest, RepliesIntoTheNewPageAfterAReload) {
  post(Object{{"id", 5}, {"verb", "readCell"}});
  platform.webView().delegate->webViewDidStartProvisionalNavigation();
  settle();
  EXPECT_THAT(platform.webView().takeScripts(), ElementsAre(HasSubstr("__qxResolve(5, ")));
}

TEST_F(PanelProtocolTest, AnswersTenThousandRequestsInOrder) {
  for (int i = 0; i < 10'000; ++i) post(Object{{"id", i}, {"verb", i % 2 ? "log" : "readCell"}});
  settle();
  EXPECT_THAT(platform.webView().takeScripts(), testing::SizeIs(10'000));
}

TEST_F(PanelProtocolTest, ForgetsRepliesWhenThePanelIsGone) {
  post(Object{{"id", 5}, {"verb", "readCell"}});
  panel.reset();
  settle();
  EXPECT_THAT(takeJournal(), ElementsAre("dispatch readCell []"));
}

}  // namespace
}  // namespace quorin
