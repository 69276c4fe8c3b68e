#include "app/shell/Poller.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Object = JSONValue::Object;

JSONValue cell(const char* sheet, const char* address) {
  return Object{{"book", "Model.xlsx"}, {"sheet", sheet}, {"addr", address}};
}

std::string changed(const std::string& sheet, const std::string& address) {
  return R"(window.__qxEvent && window.__qxEvent("selectionChanged", {"addr":")" + address +
         R"(","book":"Model.xlsx","sheet":")" + sheet + "\"})";
}

const std::string probeNeeded = R"(window.__qxEvent && window.__qxEvent("probeNeeded", {}))";

// A panel beside an Excel in front, and a poller with a period of 300 ms that has been started.
class PollerTest : public ShellFixture {
 protected:
  PollerTest() : panel(makePanel()), poller(makePoller()) {
    platform.webView().finishLoading();
    platform.workspace().frontmost = excel();
    panel->showCompanion();
    platform.webView().takeScripts();
    poller->start();
  }

  std::unique_ptr<Poller> makePoller() {
    return std::make_unique<Poller>(platform, bridge, *panel, 300);
  }

  // One firing of the timer and everything that comes of it.
  void tick() {
    platform.mainLoop().advance(300ms);
    settle();
  }
  void answer(std::optional<JSONValue> value) { bridge.answers.push_back(std::move(value)); }
  void tickWith(std::optional<JSONValue> value) {
    answer(std::move(value));
    tick();
  }
  void pass(int milliseconds);
  std::vector<std::string> events() { return platform.webView().takeScripts(); }

  std::unique_ptr<Panel> panel;
  std::unique_ptr<Poller> poller;
};

TEST_F(PollerTest, AnnouncesTheCellThatItFinds) {
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$2")));
}

TEST_F(PollerTest, WaitsForItsPeriod) {
  answer(cell("Inputs", "$B$2"));
  platform.mainLoop().advance(299ms);
  settle();
  EXPECT_EQ(bridge.polls, 0);
  platform.mainLoop().advance(1ms);
  settle();
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, AnnouncesACellOnce) {
  tickWith(cell("Inputs", "$B$2"));
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$2")));
  EXPECT_EQ(bridge.polls, 2);
}

TEST_F(PollerTest, AnnouncesTheSameAddressOnAnotherSheet) {
  tickWith(cell("Inputs", "$B$2"));
  tickWith(cell("Debt", "$B$2"));
  tickWith(cell("debt", "$B$2"));
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$2"), changed("Debt", "$B$2"),
                                    changed("debt", "$B$2")));
}

TEST_F(PollerTest, AnnouncesTheSameCellOfAnotherWorkbook) {
  tickWith(cell("Inputs", "$B$2"));
  tickWith(Object{{"book", "Other.xlsx"}, {"sheet", "Inputs"}, {"addr", "$B$2"}});
  EXPECT_EQ(events().size(), 2u);
}

TEST_F(PollerTest, PassesOnTheWholeAnswer) {
  JSONValue answered = cell("Inputs", "$B$2");
  (*answered.object())["more"] = 1;
  tickWith(answered);
  EXPECT_THAT(events(), ElementsAre(testing::HasSubstr(R"("more":1)")));
}

TEST_F(PollerTest, PollsNothingWhileThePanelIsHidden) {
  panel->close();
  tick();
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(PollerTest, PollsNothingWhileThePanelHasTheKeyboard) {
  panel->summon();
  tick();
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(PollerTest, PollsNothingWhilePaused) {
  poller->setPaused(true);
  tick();
  EXPECT_EQ(bridge.polls, 0);
  poller->setPaused(false);
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, PollsNothingUnlessExcelIsInFront) {
  platform.workspace().frontmost = editor();
  tick();
  platform.workspace().frontmost = RunningApplication{"", 99, false};
  tick();
  platform.workspace().frontmost = std::nullopt;
  tick();
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(PollerTest, NeverPollsTwiceAtATime) {
  answer(cell("Inputs", "$B$2"));
  platform.mainLoop().advance(300ms);
  EXPECT_TRUE(poller->inFlight());
  platform.mainLoop().advance(900ms);
  EXPECT_EQ(queue.waiting(), 1u);
  settle();
  EXPECT_FALSE(poller->inFlight());
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, PollsOnTheBridgeQueueBehindThePagesRequests) {
  platform.webView().post(Object{{"id", 1}, {"verb", "readCell"}});
  answer(cell("Inputs", "$B$2"));
  platform.mainLoop().advance(300ms);
  ASSERT_TRUE(queue.runOne());
  EXPECT_EQ(bridge.polls, 0);
  ASSERT_TRUE(queue.runOne());
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, RemembersWithoutAWordWhatItFindsAfterThePanelWasHidden) {
  answer(cell("Inputs", "$B$2"));
  platform.mainLoop().advance(300ms);
  panel->close();
  settle();
  events();
  panel->showCompanion();
  events();
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_EQ(bridge.polls, 2);
  EXPECT_THAT(events(), IsEmpty());
}

TEST_F(PollerTest, AsksForAProbeAtExactlyTheThirdFailureInARow) {
  tickWith(std::nullopt);
  tickWith(std::nullopt);
  EXPECT_THAT(events(), IsEmpty());
  tickWith(std::nullopt);
  EXPECT_THAT(events(), ElementsAre(probeNeeded));
  tickWith(std::nullopt);
  tickWith(std::nullopt);
  EXPECT_THAT(events(), IsEmpty());
}

TEST_F(PollerTest, AsksAgainAfterASuccessAndThreeMoreFailures) {
  for (int i = 0; i < 4; ++i) tickWith(std::nullopt);
  tickWith(cell("Inputs", "$B$2"));
  events();
  tickWith(std::nullopt);
  tickWith(std::nullopt);
  EXPECT_THAT(events(), IsEmpty());
  tickWith(std::nullopt);
  EXPECT_THAT(events(), ElementsAre(probeNeeded));
}

TEST_F(PollerTest, TakesAMalformedAnswerForASuccessWithoutACell) {
  tickWith(cell("Inputs", "$B$2"));
  events();
  const JSONValue malformed[] = {nullptr,
                                 "text",
                                 JSONValue::Array{},
                                 Object{},
                                 Object{{"book", "b"}, {"sheet", "s"}},
                                 Object{{"book", "b"}, {"sheet", "s"}, {"addr", 1}},
                                 Object{{"book", nullptr}, {"sheet", "s"}, {"addr", "a"}}};
  for (const JSONValue& value : malformed) {
    tickWith(std::nullopt);
    tickWith(std::nullopt);
    tickWith(value);
  }
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), IsEmpty());
}

TEST_F(PollerTest, IsQuietForHalfASecondAfterTheBridgesOwnMove) {
  bridge.navigated = platform.clock().now();
  tick();  // 300 ms later
  EXPECT_EQ(bridge.polls, 0);
  tickWith(cell("Inputs", "$B$2"));  // 600 ms later
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, PollsAgainExactlyHalfASecondAfterTheBridgesOwnMove) {
  bridge.navigated = platform.clock().now() - 200ms;
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, IsNotSilencedByAClockThatWasSetBack) {
  bridge.navigated = platform.clock().now() + std::chrono::hours(1);
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, AdoptsABaselineInsteadOfPolling) {
  poller->setBaseline({"Model.xlsx", "Inputs", "$B$2"});
  tick();
  EXPECT_EQ(bridge.polls, 0);
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), IsEmpty());
  tickWith(cell("Inputs", "$B$3"));
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$3")));
}

TEST_F(PollerTest, KeepsABaselineWhileItMayNotPoll) {
  poller->setBaseline({"Model.xlsx", "Inputs", "$B$2"});
  panel->close();
  tick();
  panel->showCompanion();
  events();
  tick();
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(PollerTest, LetsABaselineWinOverThePollInFlight) {
  answer(cell("Inputs", "$A$1"));
  platform.mainLoop().advance(300ms);
  poller->setBaseline({"Model.xlsx", "Inputs", "$B$2"});
  settle();
  EXPECT_THAT(events(), IsEmpty());
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), IsEmpty());
  tickWith(cell("Inputs", "$A$1"));
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$A$1")));
}

TEST_F(PollerTest, KeepsABaselineOverAFailedPoll) {
  answer(std::nullopt);
  platform.mainLoop().advance(300ms);
  poller->setBaseline({"Model.xlsx", "Inputs", "$B$2"});
  settle();
  tick();
  EXPECT_EQ(bridge.polls, 1) << "the next tick adopts it";
}

TEST_F(PollerTest, SeedsTheBaselineFromTheCellThatExcelIsOn) {
  answer(cell("Inputs", "$B$2"));
  poller->seedBaseline();
  settle();
  tick();
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), IsEmpty());
  EXPECT_EQ(bridge.polls, 2);
}

TEST_F(PollerTest, SeedsNothingFromAFailureOrAMalformedAnswer) {
  answer(std::nullopt);
  poller->seedBaseline();
  answer(Object{{"book", "b"}});
  poller->seedBaseline();
  answer("text");
  poller->seedBaseline();
  settle();
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$2")));
}

TEST_F(PollerTest, DoesNotCountAFailedSeed) {
  tickWith(std::nullopt);
  tickWith(std::nullopt);
  answer(std::nullopt);
  poller->seedBaseline();
  settle();
  EXPECT_THAT(events(), IsEmpty());
}

TEST_F(PollerTest, ReplacesItsTimerWhenStartedAgain) {
  poller->start();
  EXPECT_EQ(platform.mainLoop().timerCount(), 1u);
  tickWith(cell("Inputs", "$B$2"));
  EXPECT_EQ(bridge.polls, 1);
}

TEST_F(PollerTest, EndsWithItsTimerAndWhatIsUnderWay) {
  answer(cell("Inputs", "$B$2"));
  platform.mainLoop().advance(300ms);
  poller.reset();
  EXPECT_EQ(platform.mainLoop().timerCount(), 0u);
  settle();
  EXPECT_THAT(events(), IsEmpty());
}

// Everything that happens in so many milliseconds.
void PollerTest::pass(int milliseconds) {
  for (int passed = 0; passed < milliseconds; ++passed) {
    platform.mainLoop().advance(1ms);
    settle();
  }
}

TEST_F(PollerTest, AsksSoonAfterTheUsersInput) {
  answer(cell("Inputs", "$B$2"));
  platform.input.press();
  pass(7);
  EXPECT_EQ(bridge.polls, 0);
  pass(1);
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$2")));
}

TEST_F(PollerTest, AsksAFewTimesForExcelMayNotHaveComeToTheInputYet) {
  tickWith(cell("Inputs", "$B$2"));
  events();
  bridge.polls = 0;
  for (int i = 0; i < 5; ++i) answer(cell("Inputs", "$B$2"));
  answer(cell("Inputs", "$B$3"));
  platform.input.press();
  pass(40);
  EXPECT_EQ(bridge.polls, 5);
  pass(54);
  EXPECT_EQ(bridge.polls, 5);
  EXPECT_THAT(events(), IsEmpty());
  pass(1);
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$3")));
}

TEST_F(PollerTest, AsksNoMoreOnceTheSelectionHasMoved) {
  answer(cell("Inputs", "$B$2"));
  platform.input.press();
  pass(290);
  EXPECT_EQ(bridge.polls, 1);
  EXPECT_EQ(platform.mainLoop().timerCount(), 1u);
}

TEST_F(PollerTest, AsksSevenTimesAfterInputThatMovesNothing) {
  tickWith(cell("Inputs", "$B$2"));
  bridge.polls = 0;
  for (int i = 0; i < 10; ++i) answer(cell("Inputs", "$B$2"));
  platform.input.press();
  pass(290);
  EXPECT_EQ(bridge.polls, 7);
}

TEST_F(PollerTest, PilesNothingUpWhileAKeyIsHeldDown) {
  for (int i = 0; i < 1'000; ++i) {
    answer(cell("Inputs", i % 2 ? "$B$2" : "$B$3"));
    platform.input.press();
    platform.mainLoop().advance(7ms);
    EXPECT_LE(queue.waiting(), 1u);
    EXPECT_LE(platform.mainLoop().timerCount(), 2u);
    if (i % 7 == 0) settle();
  }
  settle();
  EXPECT_GE(bridge.polls, 100);
  EXPECT_LE(bridge.polls, 200);
}

TEST_F(PollerTest, HearsOfInputThatComesWhileItAsks) {
  answer(cell("Inputs", "$B$2"));
  platform.input.press();
  platform.mainLoop().advance(10ms);
  platform.input.press();
  answer(cell("Inputs", "$B$3"));
  pass(11);
  EXPECT_THAT(events(), ElementsAre(changed("Inputs", "$B$2"), changed("Inputs", "$B$3")));
}

TEST_F(PollerTest, IsNotNudgedWhilePollingIsOfNoUse) {
  const auto nothingHappens = [this] {
    platform.input.press();
    EXPECT_EQ(platform.mainLoop().timerCount(), 1u);
    pass(290);
    EXPECT_EQ(bridge.polls, 0);
    poller->start();
  };
  poller->setPaused(true);
  nothingHappens();
  poller->setPaused(false);
  platform.workspace().frontmost = editor();
  nothingHappens();
  platform.workspace().frontmost = excel();
  panel->summon();
  nothingHappens();
  panel->close();
  nothingHappens();
}

TEST_F(PollerTest, IsQuietAfterTheBridgesOwnMoveHoweverItIsNudged) {
  bridge.navigated = platform.clock().now();
  platform.input.press();
  pass(290);
  EXPECT_EQ(bridge.polls, 0);
}

TEST_F(PollerTest, AdoptsABaselineWhenItIsNudged) {
  poller->setBaseline({"Model.xlsx", "Inputs", "$B$2"});
  for (int i = 0; i < 7; ++i) answer(cell("Inputs", "$B$2"));
  platform.input.press();
  pass(290);
  EXPECT_EQ(bridge.polls, 6);
  EXPECT_THAT(events(), IsEmpty());
}

TEST_F(PollerTest, HearsOfNoInputWhenItIsGone) {
  poller.reset();
  platform.input.press();
  EXPECT_EQ(platform.mainLoop().timerCount(), 0u);
}

TEST_F(PollerTest, KnowsExcelByItsExactIdentifier) {
  FakeWorkspace& workspace = platform.workspace();
  workspace.frontmost = excel();
  EXPECT_TRUE(excelIsFrontmost(workspace));
  workspace.frontmost = RunningApplication{"com.microsoft.excel", 1, false};
  EXPECT_FALSE(excelIsFrontmost(workspace));
  workspace.frontmost = RunningApplication{"", 1, false};
  EXPECT_FALSE(excelIsFrontmost(workspace));
  workspace.frontmost.reset();
  EXPECT_FALSE(excelIsFrontmost(workspace));
}

}  // namespace
}  // namespace quorin
