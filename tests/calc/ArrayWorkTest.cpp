// What an expression costs where columns meet rows, told by its text alone.
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/CalcExpression.h"

namespace quorin::host::calc {
namespace {

std::optional<std::string> meaning(const SheetRef&, const std::string& name) {
  if (name == "Long") return "ROW(1:9000)";
  if (name == "Wide") return "TRANSPOSE(Long)";
  if (name == "Both") return "(Long=Wide)*1";
  return std::nullopt;
}

// Of an office that has every function.
ExpressionContext ofNewOffice() {
  return {.from = {"Plan.xlsx", "Data"},
          .knows = [](const std::string&) { return true; },
          .meaning = meaning};
}

double crossed(const std::string& excel) {
  const ExpressionContext context = ofNewOffice();
  const auto written = calcExpression(excel, context);
  EXPECT_TRUE(written) << excel;
  return written ? written->work.crossed : -1;
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

TEST(ArrayWork, CountsTheValuesOfLetWhereTheyAreUsed) {
  EXPECT_EQ(crossed("LET(a,ROW(1:9000),b,TRANSPOSE(a),SUM(a*b))"), 81e6);
  EXPECT_EQ(crossed("LET(a,ROW(1:9000),a)*COLUMN(A:B)"), 18'000);
  EXPECT_EQ(crossed("LET(a,ROW(1:9000),b,TRANSPOSE(a),SUM(a)+SUM(b))"), 0);
}

TEST(ArrayWork, KnowsWhatChoosesAmongValues) {
  EXPECT_EQ(crossed("SORT(A1:A90)*TRANSPOSE(UNIQUE(A1:A90))"), 8100);
  EXPECT_EQ(crossed("FILTER(A1:A90,B1:B90>2)*SORTBY(A1:Z1,A2:Z2)"), 90 * 26);
  EXPECT_EQ(crossed("XMATCH(A1:A90,B:B)*A1:B1"), 180);
  EXPECT_EQ(crossed("XLOOKUP(A1:A90,B:B,C:C)*A1:B1"), 180);
  EXPECT_EQ(crossed("XLOOKUP(1,B:B,C:E)*A1:A9"), 27);
  EXPECT_EQ(crossed("XLOOKUP(1,B1:Z1,B2:Z9)*A1:B1"), 16);
  EXPECT_EQ(crossed("XLOOKUP(1,B:B,C:C)*XLOOKUP(1,1:1,2:2)"), 0);
}

// Calc makes these whole, and ends where they are far too large.
TEST(ArrayWork, CountsEachArrayThatIsMade) {
  EXPECT_EQ(crossed("SEQUENCE(1000000,1000000)"), 1e12);
  EXPECT_EQ(crossed("SUM(RANDARRAY(2000.9,1E3,1,5,TRUE))"), 2e6);
  EXPECT_EQ(crossed("ROWS(_xlfn.SEQUENCE(,3000))"), 3000);
  EXPECT_EQ(crossed("SUM(MUNIT(9000))"), 81e6);
  EXPECT_EQ(crossed("EXPAND(A1:A9,,1000)"), 9000);
  EXPECT_EQ(crossed("SEQUENCE(100)*SEQUENCE(1,100)"), 200 + 10'000);
  EXPECT_EQ(crossed("RANDARRAY()+SEQUENCE(-5)+SEQUENCE(0)"), 3);
  ExpressionContext old = ofNewOffice();
  old.knows = [](const std::string& function) { return function == "MUNIT"; };
  EXPECT_EQ(calcExpression("SEQUENCE(A1,1E6)+RANDARRAY(1E6,1E6)", old)->text,
            "SEQUENCE(A1;1E6)+RANDARRAY(1E6;1E6)");
}

TEST(ArrayWork, AsksForASizeOnceAndWritesWhatItCameTo) {
  ExpressionContext context = ofNewOffice();
  std::string questions;
  context.valueOf = [&](const std::string& argument) -> std::optional<CellValue> {
    questions += argument + "|";
    if (argument == "A1") return CellValue(3.0);
    if (argument == "A2") return CellValue(Blank());
    if (argument == "A3") return CellValue(CellError{"#N/A"});
    if (argument == "A4") return CellValue("4");
    if (argument == "A5") return CellValue("four");
    if (argument == "A6") return CellValue(true);
    if (argument == "A7") return CellValue(1e300);
    if (argument.starts_with("LET(") || argument == "RAND()*5") return CellValue(2.5);
    return std::nullopt;
  };
  const auto text = [&](const std::string& excel) { return calcExpression(excel, context)->text; };
  EXPECT_EQ(text("SEQUENCE(A1,A2,A1)"), "SEQUENCE(3;0;A1)");
  EXPECT_EQ(text("SEQUENCE(A3,A4)"), "SEQUENCE(#N/A;4)");
  EXPECT_EQ(text("SEQUENCE(A5,A6)"), "SEQUENCE(#VALUE!;1)");
  EXPECT_EQ(text("RANDARRAY(RAND()*5)"), "RANDARRAY(2.5)");
  EXPECT_EQ(calcExpression("SEQUENCE(A7,A7)", context)->work.crossed > 4e6, true);
  questions.clear();
  EXPECT_EQ(text("LET(n,A1,m,n+1,SEQUENCE(m))"),
            "LET(_quorin1;A1;_quorin2;_quorin1+1;(SEQUENCE(2.5)))");
  EXPECT_EQ(questions, "LET(N,A1,M,n+1,m)|");
  EXPECT_EQ(text("LET(n,A1,SEQUENCE(A1))"), "LET(_quorin1;A1;(SEQUENCE(3)))");
  for (const char* unknown : {"SEQUENCE(A1:A2)", "LAMBDA(n,SEQUENCE(n))", "MUNIT({1,2})"}) {
    try {
      text(unknown);
      ADD_FAILURE() << unknown;
    } catch (const SpreadsheetError& failure) {
      EXPECT_EQ(failure.number(), -50);
      EXPECT_STREQ(failure.what(), "The expression makes an array of an unknown size");
    }
  }
}

TEST(ArrayWork, IsRefusedOnlyWhereItWouldHoldTheOfficeUp) {
  const auto refusal = [](double work) {
    OfficeWork all;
    all.crossed = work;
    try {
      refuseLargeArrays(all);
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
