// What an expression costs where columns meet rows, told by its text alone.
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/CalcExpression.h"

namespace quorin::host::calc {
namespace {

std::optional<std::string> meaning(const SheetRef&, const std::string& name) {
  if (name == "Long") return "ROW(1:9000)";
  if (name == "Wide") return "TRANSPOSE(Long)";
  if (name == "Both") return "(Long=Wide)*1";
  return std::nullopt;
}

double crossed(const std::string& excel) {
  const ExpressionContext context{.from = {"Plan.xlsx", "Data"}, .meaning = meaning};
  const auto written = calcExpression(excel, context);
  EXPECT_TRUE(written) << excel;
  return written ? written->crossed : -1;
}

TEST(ArrayWork, CountsWhereColumnsMeetRows) {
  EXPECT_EQ(crossed("SUMPRODUCT((ROW(1:9000)=TRANSPOSE(ROW(1:9000)))*1)"), 81e6);
  EXPECT_EQ(crossed("SUM(A1:A100*B1:K1)"), 1000);
  EXPECT_EQ(crossed("SUM(--(B1:B100>TRANSPOSE(C1:C50)))+1"), 5000);
  EXPECT_EQ(crossed("IF(A1:A100,B1:K1,0)"), 1000);
  EXPECT_EQ(crossed("A1:A100&{1,2,3}"), 300);
  EXPECT_EQ(crossed("ROW(1:3000)*COLUMN(A:CZZ)"), 3000 * 2730);
  EXPECT_EQ(crossed("MMULT(A1:B100,A1:Z2)"), 2600);
  EXPECT_EQ(crossed("MMULT(A1:CV1000,A1:ALL100)"), 1000 * 1000 * 100 / 100);
}

TEST(ArrayWork, CountsEachUseOfANameAndWhatItStandsFor) {
  EXPECT_EQ(crossed("SUM(Both)"), 81e6);
  EXPECT_EQ(crossed("SUM(Both)+SUM(Both)"), 162e6);
  EXPECT_EQ(crossed("SUM(Long=Wide)"), 81e6);
  EXPECT_EQ(crossed("SUM(Long)+SUM(Wide)"), 0);
}

TEST(ArrayWork, CountsNothingWhereNoMoreValuesComeOfIt) {
  for (const char* excel :
       {"SUM(A:A)+SUM(1:1)", "SUM(A:A*B:B)", "(A:A=\"x\")*(B1:M1=1)*B:M", "SUM(A:A,1:1)", "A:A 1:1",
        "AREAS((A:A,1:1))", "SUM(A1:A9:Z1)", "INDEX(A:Z,MATCH(1,A:A,0),5)*ROW(1:9000)",
        "SUMIFS(A:A,B:B,C1:Z1)", "ROW()+COLUMN()", "VLOOKUP(A1,A:Z,2)&1:1", "PI()*1:1"}) {
    EXPECT_EQ(crossed(excel), 0) << excel;
  }
}

TEST(ArrayWork, IsRefusedOnlyWhereItWouldHoldTheOfficeUp) {
  const auto refusal = [](double work) {
    CalcExpression expression;
    expression.crossed = work;
    try {
      refuseLargeArrays(expression);
      return std::string();
    } catch (const SpreadsheetError& failure) {
      return std::to_string(failure.number()) + " " + failure.what();
    }
  };
  EXPECT_EQ(refusal(4e6), "");
  EXPECT_EQ(refusal(4.1e6), "-50 The expression makes arrays of too many cells");
}

}  // namespace
}  // namespace quorin::host::calc
