#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class Evaluate : public BridgeFixture {
 protected:
  static JSONValue ok(JSONValue value) { return Object{{"ok", true}, {"value", std::move(value)}}; }
  static JSONValue failure(const std::string& kind, const std::string& message) {
    return Object{{"ok", false}, {"kind", kind}, {"message", message}};
  }
  static JSONValue sent(const std::string& expression) { return Array{expression}; }
};

TEST_F(Evaluate, GivesTheValue) {
  excel_.returns("qx_evaluate", 4);
  EXPECT_EQ(bridge_.evaluate("2+2"), ok(4));
  EXPECT_THAT(excel_.calls(), ElementsAre(fakes::FakeExcel::Call{"qx_evaluate", sent("2+2")}));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(9)));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Evaluate, NamesTheErrorThatTheExpressionGives) {
  excel_.fails("qx_evaluate", -1708, "Excel gave no value");
  excel_.returns("qx_evaluate", "__ERR:2");
  EXPECT_EQ(bridge_.dispatch("evaluate", {"1/0"}),
            (Bridge::Reply{true, failure("excelError", "#DIV/0!")}));
  ASSERT_EQ(excel_.calls().size(), 2u);
  EXPECT_EQ(excel_.calls()[1].arguments, sent("IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))"));
  EXPECT_THAT(clock_.waits(), ElementsAre(seconds(9), seconds(9)));
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR evaluate failed code=-1708 len=3"));
}

TEST_F(Evaluate, CallsErrorsWithoutANameUnknown) {
  excel_.fails("qx_evaluate", -1708, "m");
  excel_.returns("qx_evaluate", "__ERR:14");
  EXPECT_EQ(bridge_.evaluate("x"), failure("excelError", "#UNKNOWN!"));
}

TEST_F(Evaluate, TakesTheValueThatTheSecondQuestionGives) {
  excel_.fails("qx_evaluate", -1708, "m");
  excel_.returns("qx_evaluate", "__ERR:x");
  EXPECT_EQ(bridge_.evaluate("x"), ok("__ERR:x"));
}

TEST_F(Evaluate, KeepsTheFirstMessageWhenTheSecondQuestionFails) {
  excel_.fails("qx_evaluate", -1708, "the first");
  excel_.fails("qx_evaluate", -50, "the second");
  EXPECT_EQ(bridge_.evaluate("x"), failure("excelError", "the first"));
}

TEST_F(Evaluate, KeepsExcelsMessageWhenTheWrapperWouldBeTooLong) {
  // 31 characters of wrapper and twice the expression: 112 characters make 255, 113 make 257.
  excel_.fails("qx_evaluate", -1708, "too bad");
  EXPECT_EQ(bridge_.evaluate(std::string(113, '1')), failure("excelError", "too bad"));
  EXPECT_EQ(excel_.calls().size(), 1u);
  EXPECT_EQ(bridge_.evaluate(std::string(112, '1')), failure("excelError", "too bad"));
  EXPECT_EQ(excel_.calls().size(), 3u);
}

TEST_F(Evaluate, UsesTheSeparatorOfTheUsersFormulas) {
  excel_.fails("qx_evaluate", -1708, "m");
  excel_.returns("qx_evaluate", "__ERR:7");
  bridge_.setArgSeparator(";");
  EXPECT_EQ(bridge_.evaluate("NA()"), failure("excelError", "#N/A"));
  EXPECT_EQ(excel_.calls()[1].arguments, sent("IFERROR(NA();\"__ERR:\"&ERROR.TYPE(NA()))"));
}

TEST_F(Evaluate, TellsATimeoutApart) {
  timesOut("qx_evaluate");
  EXPECT_EQ(bridge_.evaluate("SLOW()"), failure("timeout", "Excel did not respond within 9s"));
  EXPECT_THAT(log_.lines(),
              ElementsAre("PERF qx_evaluate 9000ms", "ERROR evaluate failed code=-9990 len=6"));
}

TEST_F(Evaluate, PassesOtherErrorsOn) {
  excel_.fails("qx_evaluate", -1712, "AppleEvent timed out.");
  EXPECT_EQ(bridge_.dispatch("evaluate", {"x"}),
            (Bridge::Reply{true, failure("transport", "AppleEvent timed out.")}));
  EXPECT_EQ(excel_.calls().size(), 1u);
}

TEST_F(Evaluate, CountsCharactersAsTheReaderDoes) {
  excel_.fails("qx_evaluate", -50, "m");
  bridge_.evaluate("\"e\xCC\x81\"");  // a quoted e with a combining accent: three characters
  EXPECT_THAT(log_.lines(), ElementsAre("ERROR evaluate failed code=-50 len=3"));
}

TEST_F(Evaluate, RefusesWhatCannotBePassedOn) {
  excel_.answer("qx_evaluate", [](const AppleEvent&) {
    return ScriptReply{AppleEventDescriptor::specifier({}), std::nullopt};
  });
  EXPECT_EQ(bridge_.evaluate("A1:B2"),
            failure("transport", "evaluate result could not be marshalled"));
}

TEST(WrapForErrorType, AsksForTheErrorsNumber) {
  EXPECT_EQ(Bridge::wrapForErrorType("A1/B1", ","), "IFERROR(A1/B1,\"__ERR:\"&ERROR.TYPE(A1/B1))");
}

TEST(WrapForErrorType, StopsAt255Characters) {
  const auto longest = Bridge::wrapForErrorType(std::string(112, '1'), ",");
  ASSERT_TRUE(longest);
  EXPECT_EQ(longest->size(), 255u);
  EXPECT_EQ(Bridge::wrapForErrorType(std::string(112, '1'), ",,"), std::nullopt);
}

TEST(ParseErrTag, ReadsTheNumberAfterTheTag) {
  EXPECT_EQ(Bridge::parseErrTag("__ERR:7"), 7);
  EXPECT_EQ(Bridge::parseErrTag("__ERR:-7"), -7);
  EXPECT_EQ(Bridge::parseErrTag("__ERR:+7"), 7);
  EXPECT_EQ(Bridge::parseErrTag("__ERR:007"), 7);
}

TEST(ParseErrTag, IsNoneForAnythingElse) {
  for (const JSONValue& value :
       {JSONValue("__ERR:"), JSONValue("__ERR:7x"), JSONValue("__ERR: 7"), JSONValue("__ERR:7.0"),
        JSONValue("__ERR:+-7"), JSONValue("__err:7"), JSONValue(" __ERR:7"), JSONValue("7"),
        JSONValue("__ERR:99999999999999999999"), JSONValue(7), JSONValue(nullptr)})
    EXPECT_EQ(Bridge::parseErrTag(value), std::nullopt);
}

TEST(OkValue, WrapsAnyOtherValue) {
  EXPECT_EQ(Bridge::okValue(nullptr),
            JSONValue(JSONValue::Object{{"ok", true}, {"value", nullptr}}));
}

}  // namespace
}  // namespace quorin
