#include <optional>

#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class DeepEval : public BridgeFixture {
 protected:
  static JSONValue failure(const std::string& kind, const std::string& message) {
    return Object{{"ok", false}, {"kind", kind}, {"message", message}};
  }
};

TEST_F(DeepEval, HandsThePlanOverAsOneList) {
  excel_.returns("qx_deepeval", 6);
  Array plan;
  plan.emplace_back(Array{"1+2", "A1*2"});
  EXPECT_EQ(bridge_.dispatch("deepEval", plan),
            (Bridge::Reply{true, Object{{"ok", true}, {"value", 6}}}));
  EXPECT_THAT(excel_.calls(), ElementsAre(fakes::FakeExcel::Call{"qx_deepeval", plan}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(65)));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DeepEval, RefusesWithoutAskingExcel) {
  EXPECT_EQ(bridge_.deepEval({}), failure("refused", "deep-eval plan empty"));
  EXPECT_EQ(bridge_.deepEval(std::vector<std::string>(41, "1")),
            failure("refused", "deep-eval exceeds 40 entries"));
  EXPECT_EQ(bridge_.deepEval({std::string(255, '1')}),
            failure("refused", "deep-eval entry exceeds 255 characters"));
  EXPECT_THAT(excel_.calls(), IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
  EXPECT_EQ(bridge_.lastProgrammaticNav(), Bridge::distantPast);
}

TEST_F(DeepEval, AcceptsTheLongestEntry) {
  excel_.returns("qx_deepeval", 1);
  EXPECT_EQ(bridge_.deepEval({std::string(254, '1')}),
            JSONValue(Object{{"ok", true}, {"value", 1}}));
}

TEST_F(DeepEval, IsNotTakenForAMoveOfTheUsers) {
  const Bridge::Date before = now_;
  std::optional<Bridge::Date> during;
  excel_.answer("qx_deepeval", [&](const AppleEvent&) {
    during = bridge_.lastProgrammaticNav();
    now_ += seconds(40);
    return ScriptReply{std::nullopt, ScriptErrorInfo{-9005, "m"}};
  });
  bridge_.deepEval({"1"});
  EXPECT_EQ(during, before);
  EXPECT_EQ(bridge_.lastProgrammaticNav(), before + seconds(40));
}

TEST_F(DeepEval, TellsExcelsRefusalsApart) {
  excel_.fails("qx_deepeval", -9005, "deep-eval: an intermediate result spilled");
  EXPECT_EQ(bridge_.deepEval({"SEQUENCE(3)"}),
            failure("refused", "deep-eval: an intermediate result spilled"));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR deepEval failed code=-9005 n=1"));
}

TEST_F(DeepEval, TellsATimeoutApart) {
  timesOut("qx_deepeval");
  EXPECT_EQ(bridge_.deepEval({"1", "2"}), failure("timeout", "Excel did not respond within 65s"));
  EXPECT_THAT(log_.lines(),
              ElementsAre("PERF qx_deepeval 65000ms", "ERROR deepEval failed code=-9990 n=2"));
}

TEST_F(DeepEval, AnswersOtherErrorsWithTransport) {
  excel_.fails("qx_deepeval", -609, "Connection is invalid.");
  EXPECT_EQ(bridge_.deepEval({"1", "2", "3"}), failure("transport", "Connection is invalid."));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR deepEval failed code=-609 n=3"));
}

TEST_F(DeepEval, GivesAnErrorValueAsItsText) {
  excel_.returns("qx_deepeval", "#N/A");
  EXPECT_EQ(bridge_.deepEval({"NA()"}), JSONValue(Object{{"ok", true}, {"value", "#N/A"}}));
}

TEST_F(DeepEval, RefusesWhatCannotBePassedOn) {
  excel_.answer("qx_deepeval", [](const AppleEvent&) {
    return ScriptReply{AppleEventDescriptor::specifier({}), std::nullopt};
  });
  EXPECT_EQ(bridge_.deepEval({"A1:B2"}),
            failure("transport", "deep-eval result could not be marshalled"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace
}  // namespace quorin
