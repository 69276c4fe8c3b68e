#include "tests/fakes/QuirkyExcel.h"
#include "tests/host/ObjectModelFixture.h"

namespace quorin::host {
namespace {

using namespace events;

class QuirkyExcelTest : public ObjectModelTest {
 protected:
  QuirkyExcelTest() : excel(std::move(model_), {}) {
    const SheetRef sheet{"Known.xlsx", "Data"};
    memory().setCell(sheet, {"G1", 1.0});
    memory().setCell(sheet, {"G2", CellError{"#N/A"}});
    memory().setCell(sheet, {"G3", 3.0});
    memory().setCell(sheet, {"H3", CellError{"#N/A"}});
  }

  AppleEventReply reply(const AppleEvent& event) {
    return excel.send(event, std::chrono::seconds(10));
  }
  Descriptor read(FourCharCode code, std::string address) {
    return reply(events::get(property(code, on(std::move(address))))).result.value_or(Descriptor());
  }
  int number(const AppleEvent& event) {
    const auto answer = reply(event);
    return answer.error ? answer.error->number : 0;
  }
  static Descriptor real(double value) { return Descriptor::real(value); }
  static Descriptor string(std::string text) { return Descriptor::text(std::move(text)); }

  const Descriptor missing = Descriptor::missingValue();
  fakes::QuirkyExcel excel;
};

TEST_F(QuirkyExcelTest, PassesAnswersThroughWithoutQuirks) {
  EXPECT_EQ(read(codes::value2, "G1:G3"), row({row({real(1)}), row({missing}), row({real(3)})}));
  EXPECT_EQ(read(codes::value2, "G2:H3"),
            row({row({missing, string("")}), row({real(3), missing})}));
  EXPECT_EQ(read(codes::formula, "A7:B7"), row({row({real(42), string("")})}));
  EXPECT_EQ(number(evaluate("1/0")), -1708);
  EXPECT_TRUE(excel.isRunning());
}

TEST_F(QuirkyExcelTest, DropsTheErrorRowsOfOneColumn) {
  excel.quirks.dropsErrorRows = true;
  EXPECT_EQ(read(codes::value2, "G1:G3"), row({row({real(1)}), row({real(3)})}));
  EXPECT_EQ(read(codes::value2, "G2:G3"), real(3));
  EXPECT_EQ(read(codes::value2, "G2"), missing);
  EXPECT_EQ(read(codes::value2, "G2:H2"), row({row({missing, string("")})}));
  memory().setCell({"Known.xlsx", "Data"}, {"G3", CellError{"#N/A"}});
  EXPECT_EQ(read(codes::value2, "G2:G3"), row({}));
  EXPECT_EQ(read(codes::stringValue, "G2:G3"), row({row({string("#N/A")}), row({string("#N/A")})}));
}

TEST_F(QuirkyExcelTest, DiesOfAnErrorInTheFirstOfSeveralColumns) {
  excel.quirks.diesOfFirstColumnErrors = true;
  EXPECT_EQ(number(events::get(property(codes::value2, on("G3:H3")))), 0);
  EXPECT_EQ(number(events::get(property(codes::value2, on("G1:G3")))), 0);
  EXPECT_EQ(number(events::get(property(codes::formula, on("G1:H3")))), 0);
  EXPECT_EQ(number(events::get(property(codes::value2, on("G1:H3")))), -609);
  EXPECT_FALSE(excel.isRunning());
  EXPECT_EQ(number(events::get(property(codes::version))), -609);
  excel.relaunch();
  EXPECT_EQ(number(events::get(property(codes::version))), 0);
}

TEST_F(QuirkyExcelTest, WritesTheFormulasOfSeveralCellsAsText) {
  excel.quirks.writesFormulasAsText = true;
  EXPECT_EQ(read(codes::formula, "B2:C2"), row({row({string("1.5"), string("=B2*2")})}));
  EXPECT_EQ(read(codes::formula, "E6:F6"), row({row({string("TRUE"), string("")})}));
  EXPECT_EQ(read(codes::formula, "A7"), real(42));
}

TEST_F(QuirkyExcelTest, FlattensASingleRow) {
  excel.quirks.flattensSingleRows = true;
  EXPECT_EQ(read(codes::value2, "A2:B2"), row({string("Bolt"), real(1.5)}));
  EXPECT_EQ(read(codes::value2, "B2:B3"), row({row({real(1.5)}), row({real(2)})}));
}

TEST_F(QuirkyExcelTest, LosesBlanksButNotTheirRows) {
  excel.quirks.losesBlanks = excel.quirks.dropsErrorRows = true;
  EXPECT_EQ(read(codes::value2, "G3:G5"), row({row({real(3)}), row({missing}), row({missing})}));
  EXPECT_EQ(read(codes::value2, "J1"), missing);
  EXPECT_EQ(read(codes::formula, "J1"), string(""));
}

TEST_F(QuirkyExcelTest, LosesExpressionsAbove255Characters) {
  excel.quirks.losesLongText = true;
  const std::string longest = "1" + std::string(252, ' ') + "+1";
  ASSERT_EQ(longest.size(), 255U);
  EXPECT_EQ(reply(evaluate(longest)).result, real(2));
  EXPECT_EQ(reply(evaluate(longest + " ")).result, missing);
}

TEST_F(QuirkyExcelTest, HidesThatAnExpressionGaveAnError) {
  excel.quirks.hidesEvaluationErrors = true;
  EXPECT_EQ(reply(evaluate("1/0")).result, missing);
  EXPECT_EQ(reply(evaluate("1/1")).result, real(1));
}

TEST_F(QuirkyExcelTest, RecordsEventsAndFailsAtOneOfThem) {
  excel.failAt(2, {-10000, "Excel is busy.", {}});
  const AppleEvent version = events::get(property(codes::version));
  EXPECT_EQ(number(version), 0);
  EXPECT_EQ(number(version), -10000);
  EXPECT_EQ(number(version), 0);
  ASSERT_EQ(excel.events().size(), 3U);
  EXPECT_EQ(excel.events()[1].eventID, codes::get);
}

}  // namespace
}  // namespace quorin::host
