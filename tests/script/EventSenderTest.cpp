// Time-outs, ignored answers and what becomes of the application's errors.
#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class EventSending : public EngineFixture {};

TEST_F(EventSending, TakesTheInnermostTimeout) {
  tell(
      "calculate\n"
      "with timeout of 10 seconds\n calculate\n"
      "with timeout of 2 + 1 seconds\n calculate\n end timeout\n"
      " calculate\nend timeout\ncalculate");
  EXPECT_EQ(excel.timeouts, (std::vector<milliseconds>{seconds(120), seconds(10), seconds(3),
                                                       seconds(10), seconds(120)}));
}

TEST_F(EventSending, RestoresTheTimeoutAfterAnError) {
  tell("try\nwith timeout of 1 second\nerror \"x\"\nend timeout\nend try\ncalculate");
  EXPECT_EQ(excel.timeouts, std::vector<milliseconds>{seconds(120)});
}

TEST_F(EventSending, RefusesATimeoutThatIsNone) {
  EXPECT_EQ(tell("with timeout of -1 seconds\ncalculate\nend timeout"),
            "error -50: The timeout must be a positive number of seconds.");
}

TEST_F(EventSending, IgnoresAnswersAndErrorsWhenTold) {
  excel.willFail(-50);
  EXPECT_EQ(tell("ignoring application responses\ncalculate\nend ignoring\nreturn 1"), "1");
  EXPECT_EQ(excel.timeouts, std::vector<milliseconds>{milliseconds(0)});
}

TEST_F(EventSending, KeepsTheApplicationsOwnText) {
  excel.willFail(-1728, "No such sheet");
  EXPECT_EQ(tell("calculate"), "error -1728: Microsoft Excel got an error: No such sheet");
}

TEST_F(EventSending, NamesTheObjectThatOffended) {
  excel.willFail(
      -1728, "",
      AppleEventDescriptor::specifier(
          {{fourCharCode("want"), AppleEventDescriptor::typeCode(fourCharCode("X141"))},
           {fourCharCode("form"), AppleEventDescriptor::enumerator(fourCharCode("name"))},
           {fourCharCode("seld"), AppleEventDescriptor::text("Gone \"x\"")},
           {fourCharCode("from"), AppleEventDescriptor::null()}}));
  EXPECT_EQ(tell("get name of worksheet 1 of workbook \"Gone\""),
            "error -1728: Microsoft Excel got an error: Can't get workbook \"Gone \\\"x\\\"\".");
}

struct Standard {
  int number;
  const char* text;
};

TEST_F(EventSending, HasATextForEveryStandardNumber) {
  const Standard texts[] = {{-128, "User canceled."},
                            {-50, "Parameter error."},
                            {-600, "Application isn't running."},
                            {-609, "Connection is invalid."},
                            {-1708, "range \"A1\" doesn't understand the get address message."},
                            {-1712, "AppleEvent timed out."},
                            {-1719, "Can't get range \"A1\". Invalid index."},
                            {-1728, "Can't get range \"A1\"."},
                            {-1743, "Not authorized to send Apple events to Microsoft Excel."},
                            {-10000, "AppleEvent handler failed."},
                            {-10003, "Can't set range \"A1\". Access not allowed."},
                            {-4711, "An error of type -4711 has occurred."}};
  for (const auto& [number, text] : texts) {
    excel.willFail(number);
    EXPECT_EQ(tell("get address of range \"A1\""),
              "error " + std::to_string(number) + ": Microsoft Excel got an error: " + text);
  }
}

TEST_F(EventSending, GivesTheOffenderToTheScript) {
  excel.willFail(-1728);
  EXPECT_EQ(tell("try\nget value of range \"A1\"\non error from o\nreturn o\nend try"),
            "prop[prop type'DPVu'] of X117[name \"A1\"]");
}

TEST_F(EventSending, PassesAnswersThroughAsTheyCame) {
  const AppleEventDescriptor odd =
      AppleEventDescriptor::withData(fourCharCode("cRGB"), std::string("\x01\x02", 2));
  const AppleEventDescriptor date =
      AppleEventDescriptor::withInteger(fourCharCode("ldt "), 3786912000);
  for (const AppleEventDescriptor& answer :
       {odd, date, AppleEventDescriptor::missingValue(), AppleEventDescriptor::null(),
        AppleEventDescriptor::withInteger(fourCharCode("comp"), 5)}) {
    excel.willAnswer(answer);
    Script script =
        compiled("tell application \"Microsoft Excel\" to return {value of range \"A1\"}");
    const ScriptOutcome outcome = script.run();
    ASSERT_TRUE(outcome.result);
    const bool number = answer.type() == fourCharCode("comp");
    EXPECT_EQ(outcome.result->items().front(), number ? AppleEventDescriptor::integer(5) : answer);
  }
}

TEST_F(EventSending, CalculatesWithTheDatesThatCame) {
  // 2024-02-29 13:05:09, as seconds since 1904.
  excel.willAnswer(AppleEventDescriptor::withInteger(fourCharCode("ldt "), 3792056709));
  EXPECT_EQ(tell("set d to value of range \"A1\"\nset e to d + 172800\n"
                 "return {year of d, month of d as integer, day of d, weekday of d is Thursday, "
                 "hours of d, minutes of d, seconds of d, day of e, e - d, e > d, d as text}"),
            "{2024, 2, 29, true, 13, 5, 9, 2, 172800, true, "
            "\"Thursday, February 29, 2024 1:05:09 PM\"}");
}

TEST_F(EventSending, LeavesAGridAloneUntilAnItemIsAskedFor) {
  AppleEventDescriptor::Items rows;
  for (int row = 0; row < 100; ++row) {
    AppleEventDescriptor::Items cells;
    for (int column = 0; column < 20; ++column) {
      cells.push_back(AppleEventDescriptor::withInteger(fourCharCode("shor"), row * column));
    }
    rows.push_back(AppleEventDescriptor::list(std::move(cells)));
  }
  const AppleEventDescriptor grid = AppleEventDescriptor::list(std::move(rows));
  excel.willAnswer(grid);
  Script script = compiled(
      "tell application \"Microsoft Excel\" to set v to value2 of range \"A1:T100\"\n"
      "return {v, count of v}");
  const ScriptOutcome outcome = script.run();
  ASSERT_TRUE(outcome.result);
  EXPECT_EQ(outcome.result->items()[0], grid);
  EXPECT_EQ(outcome.result->items()[1], AppleEventDescriptor::integer(100));
  excel.willAnswer(grid);
  EXPECT_EQ(tell("set v to value2 of range \"A1:T100\"\nreturn item 3 of item 5 of v"), "8");
}

}  // namespace
}  // namespace quorin::script
