// Whole handlers called from outside, against an application that answers from a list.
#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

class HandlerCall : public EngineFixture {};

constexpr const char* library = R"(
on where_am_i()
  tell application "Microsoft Excel"
    with timeout of 2 seconds
      return {name of active workbook, name of active sheet, get address of active cell}
    end timeout
  end tell
end where_am_i

on read_cell()
  tell application "Microsoft Excel"
    with timeout of 3 seconds
      set c to active cell
      return {name of active workbook, get address of c, first row index of c, ¬
        first column index of c, formula of c, value2 of c, get address of selection, ¬
        get address of current region of c}
    end timeout
  end tell
end read_cell
)";

AppleEventDescriptor text(const char* value) {
  return AppleEventDescriptor::text(value);
}

TEST_F(HandlerCall, AsksForTheCellByPropertiesAndCommands) {
  Script script = compiled(library);
  excel.willAnswer(text("Book1"));
  excel.willAnswer(text("Sheet1"));
  excel.willAnswer(text("$B$3"));
  EXPECT_EQ(show(script.call("where_am_i", {})), R"({"Book1", "Sheet1", "$B$3"})");
  ASSERT_EQ(excel.events.size(), 3U);
  EXPECT_EQ(sent(0), "core/getd{----:prop[prop type'pnam'] of prop[prop type'1172']}");
  EXPECT_EQ(sent(1), "core/getd{----:prop[prop type'pnam'] of prop[prop type'1107']}");
  EXPECT_EQ(sent(2), "sTBL/1515{----:prop[prop type'1104']}");
  for (const auto timeout : excel.timeouts) EXPECT_EQ(timeout, std::chrono::seconds(2));
}

TEST_F(HandlerCall, KeepsTheObjectThatTheApplicationAnswered) {
  Script script = compiled(library);
  const AppleEventDescriptor cell = AppleEventDescriptor::specifier(
      {{fourCharCode("want"), AppleEventDescriptor::typeCode(fourCharCode("ccel"))},
       {fourCharCode("form"), AppleEventDescriptor::enumerator(fourCharCode("name"))},
       {fourCharCode("seld"), text("$B$3")},
       {fourCharCode("from"), AppleEventDescriptor::null()}});
  excel.willAnswer(cell);
  excel.willAnswer(text("Book1"));
  excel.willAnswer(text("$B$3"));
  excel.willAnswer(AppleEventDescriptor::integer(3));
  excel.willAnswer(AppleEventDescriptor::integer(2));
  excel.willAnswer(text("=A1*2"));
  excel.willAnswer(AppleEventDescriptor::real(42));
  excel.willAnswer(text("$B$3:$C$4"));
  excel.willAnswer(text("$A$1:$D$9"));
  EXPECT_EQ(show(script.call("READ_CELL", {})),
            R"({"Book1", "$B$3", 3, 2, "=A1*2", 42.0, "$B$3:$C$4", "$A$1:$D$9"})");
  ASSERT_EQ(excel.events.size(), 9U);
  EXPECT_EQ(sent(0), "core/getd{----:prop[prop type'1104']}");
  EXPECT_EQ(sent(2), R"(sTBL/1515{----:ccel[name "$B$3"]})");
  EXPECT_EQ(sent(5), R"(core/getd{----:prop[prop type'1562'] of ccel[name "$B$3"]})");
}

TEST_F(HandlerCall, ReportsAnUnknownHandlerAndWrongArguments) {
  Script script = compiled("on add(a, b)\nreturn a + b\nend add");
  EXPECT_EQ(show(script.call("subtract", {})),
            "error -1708: \xC2\xABscript\xC2\xBB doesn't understand the subtract message.");
  EXPECT_EQ(show(script.call("add", {AppleEventDescriptor::integer(1)})),
            "error -1721: {1} doesn't match the parameters {a, b} for add.");
  EXPECT_EQ(show(script.call("Add",
                             {AppleEventDescriptor::integer(1), AppleEventDescriptor::integer(2)})),
            "3");
}

}  // namespace
}  // namespace quorin::script
