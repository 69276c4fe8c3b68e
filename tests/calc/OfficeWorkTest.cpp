// What an expression has Calc do in one go, told by its text, and what of that is not asked of it.
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/CalcExpression.h"

namespace quorin::host::calc {
namespace {

// As told where a million cells of each range are filled, or fewer, and no text is longer.
struct Filled {
  double cells = 1e6;
  double longestText = 0;
};

ExpressionContext plan() {
  return {.from = {"Plan.xlsx", "Data"},
          .knows = [](const std::string&) { return true; },
          .meaning =
              [](const SheetRef&, const std::string& name) {
                return name == "Counts" ? std::optional<std::string>("COUNTIF(A1:A9000,A1:A9000)")
                                        : std::nullopt;
              }};
}

std::string refusal(const std::string& excel, const Filled& filled = {},
                    const ExpressionContext& context = plan()) {
  try {
    const auto calc = calcExpression(excel, context);
    if (!calc) return "no expression";
    refuseLargeArrays(calc->work);
    refuseLongSearches(
        calc->work,
        [&](const RangeRef& range) {
          const Area& area = range.areas.front();
          return std::min(filled.cells, double(area.lastRow - area.firstRow + 1) *
                                            (area.lastColumn - area.firstColumn + 1));
        },
        filled.longestText);
  } catch (const SpreadsheetError& failure) {
    return failure.what();
  }
  return "";
}

constexpr const char* cells = "The expression makes arrays of too many cells";
constexpr const char* text = "The expression makes arrays of too much text";
constexpr const char* looks = "The expression looks through too many cells too often";
constexpr const char* counts = "The expression counts too far";

TEST(OfficeWork, IsRefusedWhereArraysAreLarge) {
  for (const char* excel :
       {"SUM((A:Z+1)*2)", "SUM(-(A:AZ))", "SUMPRODUCT(--(A:Z=\"x\"))", "SUM(LEN(A:BZ))",
        "SUM(SIN(A:AZ))", "SUM(A:AZ%)", "SUM(MUNIT(8000))", "SUM(SEQUENCE(9000,9000))",
        "MINVERSE(MUNIT(400))", "MDETERM(A1:NT384)", "LINEST(A1:A50000,B1:AZ50000)"}) {
    EXPECT_EQ(refusal(excel), cells) << excel;
  }
  // By how long a value takes.
  for (const char* excel : {"SUM(IFERROR(DAYS(A43,F:M),0))", "COUNT(LEN(A:I))",
                            "SUMPRODUCT(--(TEXT(A:A,\"0.0\")=\"1\"))", "COUNT(DEC2HEX(A1:A900000))",
                            "SUM(EOMONTH(A:A+0,1))"}) {
    EXPECT_EQ(refusal(excel), cells) << excel;
  }
  for (const char* excel :
       {"SUMPRODUCT((YEAR(A:A)=2020)*(MONTH(A:A)=3)*(LEN(B:B)>3)*ISNUMBER(C:C)*C:C)",
        "SUMPRODUCT(--(TEXT(A1:A90000,\"0.0\")=\"1\"))", "SUM(IF(IFERROR(N(A:F)>3,0),1,0))"}) {
    EXPECT_EQ(refusal(excel), "") << excel;
  }
  for (const char* excel : {"SUM(A:Z)", "SUM(A:Z+1)", "SUMPRODUCT((A:A=\"x\")*(B:B=1)*C:C)",
                            "SUM(A:ZZ)*2", "VLOOKUP(1,A:Z,3,FALSE)+SUMIFS(A:A,B:B,1)", "MUNIT(100)",
                            "SEQUENCE(1000,10)", "MINVERSE(A1:T20)", "LINEST(A1:A5000,B1:F5000)"}) {
    EXPECT_EQ(refusal(excel), "") << excel;
  }
}

TEST(OfficeWork, IsRefusedWhereManyValuesAreLookedUpInManyCells) {
  for (const char* excel :
       {"SUM(COUNTIF(A:A,A1:A200))", "SUM(1/COUNTIF(A1:A20000,A1:A20000))", "SUM(Counts+Counts)",
        "SUM(SUMIFS(C:C,A:A,A1:A99))", "SUM(AVERAGEIFS(C:C,A:A,1,B:B,B1:B99))",
        "SUM(MATCH(A1:A8000,B1:B8000,0))", "SUM(VLOOKUP(A1:A8000,B1:C8000,2,FALSE))",
        "SUM(SMALL(A1:A9000,ROW(1:9000)))", "SUM(RANK(A1:A8000,A1:A8000))",
        "SUM(MATCH(A1:A8000,B1:B8000&C1:C8000,0))", "FORECAST.ETS(1,A1:A30000,B1:B30000)",
        "XIRR(A1:A9000,B1:B9000)", "SUM(NETWORKDAYS(A1:A9000,B1,C1:C999))",
        "SUM(COUNTIF(A:A,ROW(1:9000)))"}) {
    EXPECT_EQ(refusal(excel), looks) << excel;
  }
  for (const char* excel :
       {"COUNTIF(A:A,A1)", "SUM(COUNTIF(A1:A9000,A1:A9000))", "MATCH(A1,B:B,0)",
        "SUM(LOOKUP(A1:A2000,B1:B20000))", "SUM(VLOOKUP(A1:A9000,B1:C9000,2))",
        "SUM(MATCH(A1:A9000,B1:B9000,1))", "SUM(SMALL(A1:A9000,{1,2,3}))", "RANK(A1,A:A)",
        "XIRR(A1:A500,B1:B500)", "SUM(COUNTIF(A1:A9000,{\"a\",\"b\"}))"}) {
    EXPECT_EQ(refusal(excel), "") << excel;
  }
  // As many cells as are filled, not as the range has.
  EXPECT_EQ(refusal("SUM(COUNTIF(A:A,A1:A200))", {.cells = 2000}), "");
  EXPECT_EQ(refusal("SUM(COUNTIF(A:A,A:A))", {.cells = 2000}), looks);
}

TEST(OfficeWork, IsRefusedWhereTextsGrow) {
  EXPECT_EQ(refusal("SUM(LEN(REPT(\"x\",32767)&ROW(1:9000)))"), text);
  EXPECT_EQ(refusal("SUM(LEN(A1:A9000&B1))", {.longestText = 32767}), text);
  EXPECT_EQ(refusal("SUM(LEN(A1:A9000&B1))", {.longestText = 300}), "");
  EXPECT_EQ(refusal("SUM(LEN(REPT(\"ab\",20)&ROW(1:9000)))"), "");
  EXPECT_EQ(refusal("LEN(SUBSTITUTE(A1,\"a\",B1))", {.longestText = 32767}), looks);
  EXPECT_EQ(refusal("LEN(SUBSTITUTE(REPT(\"a\",32767),\"a\",REPT(\"b\",32767)))"), looks);
  EXPECT_EQ(refusal("LEN(SUBSTITUTE(A1,\"a\",B1))", {.longestText = 3000}), "");
  EXPECT_EQ(refusal("LEN(SUBSTITUTE(A1,\"a\",\"bcd\"))", {.longestText = 32767}), "");
  EXPECT_EQ(refusal("LEN(SUBSTITUTE(A1,\"a\",B1,1))", {.longestText = 32767}), "");
  EXPECT_EQ(refusal("LEN(TEXTJOIN(B1,TRUE,A:A))", {.longestText = 32767}), looks);
  EXPECT_EQ(refusal("LEN(TEXTJOIN(\", \",TRUE,A:A))", {.longestText = 32767}), "");
}

TEST(OfficeWork, IsRefusedWhereAFunctionCountsFar) {
  for (const char* excel :
       {"COMBIN(1E12,5E11)", "COMBINA(9,1E9)", "PERMUT(1E12,500000000)",
        "CUMIPMT(0.1,9E9,1,1,9E9,0)", "CUMPRINC(0.1,9E9,1,1,9E9,0)", "VDB(9,1,9E9,1,9E9)",
        "AMORDEGRC(9,1,2,0,4E9,0.1,1)", "BESSELI(1,1E9)", "BESSELY(1,1E9)",
        "BINOM.INV(1E9,0.5,0.5)", "CRITBINOM(1E9,0.5,0.5)", "MULTINOMIAL(1,2,1E9)",
        "NEGBINOMDIST(1E9,5,0.5)", "WORKDAY(1,1E9)", "WORKDAY(1,-1E9)"}) {
    EXPECT_EQ(refusal(excel), counts) << excel;
  }
  for (const char* excel : {"COMBIN(49,6)", "COMBIN(1E12,2)", "CUMIPMT(0.1,36,1,1,36,0)",
                            "WORKDAY(45000,30)", "BESSELI(1.5,2)", "MULTINOMIAL(1,2,3)"}) {
    EXPECT_EQ(refusal(excel), "") << excel;
  }
}

TEST(OfficeWork, IsKnownByWhatTheNumbersComeTo) {
  ExpressionContext context = plan();
  context.valueOf = [](const std::string& argument) -> std::optional<CellValue> {
    if (argument == "A1") return 9e9;
    if (argument == "A2") return 30.0;
    return std::nullopt;
  };
  EXPECT_EQ(refusal("COMBIN(A1,A1)", {}, context), counts);
  EXPECT_EQ(refusal("COMBIN(A1,A2)", {}, context), "");
}

// Where nobody can tell before, Calc does not count beyond what it can in a moment.
TEST(OfficeWork, CountsNoFurtherThanAMomentWhereItIsNotKnownBefore) {
  const auto written = [](const char* excel) { return calcExpression(excel, plan())->text; };
  EXPECT_EQ(written("COMBIN(A1,B1)+1"), "COMBIN(A1;IF(ABS(B1)>20000000;NA();B1))+1");
  EXPECT_EQ(written("COMBIN(A1,6)"), "COMBIN(A1;6)");
  EXPECT_EQ(written("SUM(PERMUT(9,A1:A2000))"),
            "SUM(PERMUT(9;IF(ABS(A1:A2000)>10000;NA();A1:A2000)))");
}

// What the office tells of these places, where an expression reaches them.
ExpressionContext places() {
  ExpressionContext context = plan();
  context.valueOf = [](const std::string& argument) -> std::optional<CellValue> {
    if (argument == "B1") return 3.0;
    if (argument == "B2" || argument == "MAX(ROW(1:9000))") return 9000.0;
    if (argument == "B3") return 0.0;
    if (argument == "B4") return -200000.0;
    if (argument == "ROWS(A1:INDEX(A:Z,B2,B1))") return 9000.0;
    if (argument == "COLUMNS(A1:INDEX(A:Z,B2,B1))") return 3.0;
    if (argument == "ROWS(A1:INDEX(A:A,B2))" || argument == "ROWS(A1:OFFSET(A1,B2,0))")
      return 9000.0;
    if (argument == "COLUMNS(A1:INDEX(A:A,B2))" || argument == "COLUMNS(A1:OFFSET(A1,B2,0))")
      return 1.0;
    return std::nullopt;
  };
  return context;
}

TEST(OfficeWork, IsKnownOfCellsThatAreOnlyFoundWhenItIsDone) {
  for (const char* excel :
       {"SUM(OFFSET(A1,0,0,B2,9000)+1)", "SUM(-OFFSET(A:AZ,1,0))", "SUM(OFFSET(A1,0,0,C1,99)*2)",
        "SUM((OFFSET(A1,0,0,B2)=TRANSPOSE(OFFSET(A1,0,0,9000)))*1)", "SUM(INDEX(A:AZ,B3,B3)+1)",
        "SUM(INDEX(A:AZ,0,0)+1)", "SUM((A1:INDEX(A:A,B2)=TRANSPOSE(A1:OFFSET(A1,B2,0)))*1)",
        "SUM((A1:INDEX(A:Z,C1,C2)>1)*1)", "SUM(CHOOSE(1,A:AZ)+1)", "SUM(IFS(TRUE,A:AZ)+1)"}) {
    EXPECT_EQ(refusal(excel, {}, places()), cells) << excel;
  }
  for (const char* excel :
       {"SUM(COUNTIF(C:C,OFFSET(A1,0,0,B2)))", "SUM(COUNTIF(C:C,A1:INDEX(A:A,B2)))",
        "SUM(COUNTIF(C1:C4000,OFFSET(A1,0,0,B4,1)))", "SUM(SUMIF(OFFSET(A1,0,0,ROW(1:90000)),1))",
        "SUM(SUBTOTAL(9,OFFSET(A1,0,0,ROW(1:99000),9)))"}) {
    EXPECT_EQ(refusal(excel, {}, places()), looks) << excel;
  }
  for (const char* excel :
       {"SUM(OFFSET(A1,0,0,C1,C2))", "OFFSET(A1,0,0,C1,C2)", "SUM(OFFSET(A1,0,0,B1,B1)*2)",
        "SUMPRODUCT((OFFSET(A1,0,0,B2)>1)*OFFSET(B1,0,0,B2))", "SUM(A1:INDEX(A:XFD,C1,C2))",
        "SUMPRODUCT((A1:INDEX(A:Z,B2,B1)>1)*1)", "INDEX(A:XFD,B2,B1)*2+1",
        "INDEX(A:XFD,MATCH(1,B:B,0),MATCH(\"a(\",1:1,0))*2", "SUM(INDEX(A:AZ,0,2)*2)",
        "SUM(INDEX(A:AZ,B1,0)*2)", "SUM(SUBTOTAL(103,OFFSET(A1,ROW(1:9000)-1,0,1,1)))",
        "SUM(SUBTOTAL(9,OFFSET(A1,0,0,ROW(1:9000))))", "VLOOKUP(1,CHOOSE({1,2},B:B,A:A),2,0)",
        "COUNTIF(OFFSET(A1,0,0,C1,1),1)"}) {
    EXPECT_EQ(refusal(excel, {}, places()), "") << excel;
  }
}

// Each question is an evaluation of its own, and such formulas are in every workbook.
TEST(OfficeWork, IsNotAskedForOfCellsOfWhichNoArrayIsMade) {
  std::vector<std::string> asked;
  ExpressionContext context = plan();
  context.valueOf = [&](const std::string& argument) -> std::optional<CellValue> {
    asked.push_back(argument);
    return 3.0;
  };
  for (const char* excel : {"SUM(OFFSET(A1,0,0,B2,B1))", "OFFSET(A1,0,0,B2,B1)",
                            "SUM( OFFSET(A1,0,0,B2,B1) , 1)", "SUM(INDEX(A:AZ,B1,0))"}) {
    EXPECT_EQ(refusal(excel, {}, context), "") << excel;
    EXPECT_THAT(asked, testing::IsEmpty()) << excel;
  }
  refusal("SUM(OFFSET(A1,0,0,B2,B1)+1)", {}, context);
  EXPECT_THAT(asked, testing::ElementsAre("B2", "B1"));
}

// A name is no end of the expression: what it finds may be counted around it.
TEST(OfficeWork, IsKnownOfCellsThatANameFinds) {
  ExpressionContext context = places();
  context.meaning = [](const SheetRef&, const std::string& name) {
    return name == "Grows" ? "OFFSET(A1,0,0,B2,9000)" : "A1:INDEX(A:Z,B2,B1)";
  };
  EXPECT_EQ(refusal("SUM(Grows*2)", {}, context), cells);
  EXPECT_EQ(refusal("SUM(Ends*2)", {}, context), "");
  EXPECT_EQ(refusal("SUM(COUNTIF(C:C,Ends))", {}, context), looks);
}

TEST(OfficeWork, IsWhatAFunctionTakesForEachValue) {
  for (const char* excel :
       {"SUM(RATE(ROW(1:30000),-1,1000))", "SUM(YIELD(A1:A9000,B1,0.1,95,100,2))",
        "SUM(YEARFRAC(A:A,B1,1))", "SUM(YEARFRAC(A1:A9000,B1,C1:C9000))",
        "SUM(COUPNUM(A1:A9000,B1,2,C1:C9000))", "SUM(ERF(A1:A9000,B1:B9000))",
        "SUM(NETWORKDAYS(A1:A90000,B1))"}) {
    EXPECT_EQ(refusal(excel), cells) << excel;
  }
  for (const char* excel : {"SUM(RATE(A1:A2000,-1,1000))", "SUM(YEARFRAC(A1:A9000,B1:B9000,1))",
                            "SUM(COUPNUM(A1:A9000,B1:B9000,2,1))", "SUM(ERF(A1:A9000))",
                            "SUM(NETWORKDAYS(A1:A9000,B1:B9000))", "YIELD(A1,B1,0.1,95,100,2)"}) {
    EXPECT_EQ(refusal(excel), "") << excel;
  }
  EXPECT_EQ(refusal("SUM(IRR(A1:A9000,B1:B9000))"), looks);
  EXPECT_EQ(refusal("IRR(A1:A9000)"), "");
}

// Calc goes through the years, or the days, up to a date.
TEST(OfficeWork, GoesNoFurtherThanDatesDo) {
  const auto written = [](const char* excel) { return calcExpression(excel, plan())->text; };
  EXPECT_EQ(written("NETWORKDAYS(45000,A1)"), "NETWORKDAYS(45000;IF(ABS(A1)>2958465;#NUM!;A1))");
  EXPECT_EQ(written("NETWORKDAYS(1,1E9)+NETWORKDAYS(-1E9,1)"),
            "NETWORKDAYS(1;#NUM!)+NETWORKDAYS(#NUM!;1)");
  EXPECT_EQ(written("SUM(NETWORKDAYS(45000,A1:A9))"),
            "SUM(NETWORKDAYS(45000;IF(ABS(A1:A9)>100000;#NUM!;A1:A9)))");
  EXPECT_THAT(written("TBILLPRICE(45000,5E8,0.1)"), testing::EndsWith("(45000;#NUM!;0.1)"));
  EXPECT_THAT(written("ACCRINT(1,5E8,3,5E8,1000)"), testing::EndsWith("(1;#NUM!;3;5E8;1000)"));
}

TEST(OfficeWork, IsRefusedWherePatternsMayTakeLong) {
  for (const char* excel : {"SUM(LEN(_xlfn.ORG.LIBREOFFICE.REGEX(A1:A9,\"(a+)+b\")))",
                            "SUM(LEN(_xlfn.ORG.LIBREOFFICE.REGEX(A1:A9,B1)))"}) {
    EXPECT_EQ(refusal(excel), cells) << excel;
  }
  const char* const one = "SUM(LEN(_xlfn.ORG.LIBREOFFICE.REGEX(A1:A900,\"[0-9]+\")))";
  EXPECT_EQ(refusal(one, {.longestText = 500}), "");
  EXPECT_EQ(refusal(one, {.longestText = 32767}), looks);
  EXPECT_EQ(refusal("_xlfn.ORG.LIBREOFFICE.REGEX(A1,\"(a+)+b\")", {.longestText = 32767}), "");
}

}  // namespace
}  // namespace quorin::host::calc
