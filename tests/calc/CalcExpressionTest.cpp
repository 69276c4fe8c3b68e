#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/calc/grammar/CalcExpression.h"

namespace quorin::host::calc {
namespace {

std::optional<SheetPlace> elsewhere(const std::string& book, const std::string& sheet) {
  if (book != "Other.ods") return std::nullopt;
  return SheetPlace{{book, sheet}, "'file:///home/a/Other.ods'#$'" + sheet + "'"};
}

std::optional<std::string> meaning(const SheetRef& scope, const std::string& name) {
  if (name == "rate") return scope.sheet.empty() ? "Data!$B$1" : "Local!$C$1";
  if (name == "twice") return "rate*2";
  if (name == "endless") return "endless+1";
  return std::nullopt;
}

std::string tablePart(const std::string&, const std::string& table, const TableItems& items) {
  if (table != "Table1") return "#NAME?";
  if (items.thisRow) return "Data!$A$3:" + items.lastColumn + "3";
  return items.firstColumn == "Net, Sum" ? "Data!$A$2:$A$9" : "#REF!";
}

std::optional<Grid<CellValue>> formulas(const RangeRef& cells) {
  if (cells.areas.front().lastRow > 2) return std::nullopt;
  if (cellCount(cells.areas) == 1) return Grid<CellValue>{1, 1, {"=B1&\"!\""}};
  return Grid<CellValue>{2, 2, {"=B1", 5.0, "text", "=B2"}};
}

std::string fileName(const SheetRef& sheet) {
  return "/home/a/[" + sheet.book + "]" + sheet.sheet;
}

const ExpressionContext context{.from = {"Plan.xlsx", "Data"},
                                .elsewhere = elsewhere,
                                .meaning = meaning,
                                .tablePart = tablePart,
                                .formulas = formulas,
                                .fileName = fileName};

std::optional<std::string> textOf(const char* excel, const ExpressionContext& from = context) {
  const auto result = calcExpression(excel, from);
  return result ? std::optional(result->text) : std::nullopt;
}

struct Case {
  const char* excel;
  const char* calc;
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << each.excel;
}

class ToCalc : public testing::TestWithParam<Case> {};

TEST_P(ToCalc, WritesWhatCalcStores) {
  EXPECT_EQ(textOf(GetParam().excel), GetParam().calc);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ToCalc,
    testing::Values(
        Case{"1+2", "1+2"}, Case{"=1+2", "1+2"}, Case{" = 1 + 2 ", " 1 + 2"},
        Case{"SUM(A1,B2)", "SUM(A1;B2)"}, Case{"SUM(A1;B2)", "SUM(A1;B2)"},
        Case{"IF(A1,,2)", "IF(A1;;2)"}, Case{"IF(A1,\"a,b;\"\"c\",2)", "IF(A1;\"a,b;\"\"c\";2)"},
        Case{"{1,2;3,4}", "{1;2|3;4}"}, Case{"{\"a,b\";-1}", "{\"a,b\"|-1}"},
        Case{"Sheet2!A1", "$'Sheet2'.A1"}, Case{"'It''s'!$A$1:B2", "$'It''s'.$A$1:B2"},
        Case{"[Plan.xlsx]Data!A1", "$'Data'.A1"},
        Case{"'[Plan.xlsx]My Data'!A:C", "$'My Data'.A:C"},
        Case{"[Other.ods]Data!A1", "'file:///home/a/Other.ods'#$'Data'.A1"},
        Case{"[Gone.xlsx]Data!A1+1", "#REF!+1"},
        Case{"SUM(Jan:Mar!B2)", "SUM($'Jan'.B2:$'Mar'.B2)"}, Case{"SUM(2:$5)", "SUM(2:$5)"},
        Case{"SUM((A1:A2,C3))", "SUM((A1:A2~C3))"}, Case{"A1:C3 B2:D4", "A1:C3!B2:D4"},
        Case{"SUM(here tax)", "SUM(#NAME?!#NAME?)"}, Case{"A1:INDEX(B1:B4,2)", "A1:INDEX(B1:B4;2)"},
        Case{"Sheet2!here*2", "#NAME?*2"}, Case{"TRUE", "TRUE()"},
        Case{"IF(true,1,FALSE)", "IF(TRUE();1;FALSE())"}, Case{"TRUE()", "TRUE()"},
        Case{"\"x\"&TRUE", "\"x\"&\"TRUE\""}, Case{"false & 5", "\"FALSE\" & 5"},
        Case{"\"x\"&(A1>2)", "\"x\"&IF((A1>2);\"TRUE\";\"FALSE\")"},
        Case{"(A1=B1)&\"x\"", "IF((A1=B1);\"TRUE\";\"FALSE\")&\"x\""},
        Case{"(A1+2)&\"x\"", "(A1+2)&\"x\""}, Case{"-(A1>2)&\"x\"", "-(A1>2)&\"x\""},
        Case{"(1+(A1>2))&\"x\"", "(1+(A1>2))&\"x\""},
        Case{"\"x\"&not(A1)=B1", "\"x\"&IF(NOT(A1);\"TRUE\";\"FALSE\")=B1"},
        Case{"\"x\"&A1", "\"x\"&IF(ISLOGICAL(A1);IF(A1;\"TRUE\";\"FALSE\");A1)"},
        Case{"\"x\"&A1:A3", "\"x\"&A1:A3"}, Case{"\"x\"&A1*2", "\"x\"&A1*2"},
        Case{"2^A1&1", "2^A1&1"}, Case{"SUM(A1)&1", "SUM(A1)&1"},
        Case{"1&(A1:C3 B2)", "1&(A1:C3!B2)"}, Case{"A1:C3 B2&1", "A1:C3!B2&1"},
        Case{"1&TRUE+1", "1&TRUE()+1"}, Case{"1+TRUE&2", "1+TRUE()&2"},
        Case{"5&-TRUE", "5&-TRUE()"}, Case{"A1=TRUE", "A1=TRUE()"}, Case{"-5%^2", "-5%^2"},
        Case{"A1<>B1", "A1<>B1"}, Case{"A1>=-1.5E+3", "A1>=-1.5E+3"}, Case{"A1<=+1", "A1<=+1"},
        Case{".5*2.", ".5*2."}, Case{"IFERROR(#REF!,#N/A)", "IFERROR(#REF!;#N/A)"},
        Case{"Data!#REF!+1", "#REF!+1"}, Case{"LOG10(A1)", "LOG10(A1)"},
        Case{"_xlfn.XLOOKUP(1,A:A,B:B)", "XLOOKUP(1;A:A;B:B)"}, Case{"@A1:A3", "A1:A3"},
        Case{"Table1[Net, Sum]*2", "$'Data'.$A$2:$A$9*2"},
        Case{"SUM(Table1[@B])", "SUM($'Data'.$A$3:B3)"}, Case{"Table1[Gone]", "#REF!"},
        Case{"Table2[Net]", "#NAME?"}, Case{"rate", "$'Data'.$B$1"},
        Case{"Data!rate+1", "$'Local'.$C$1+1"}, Case{"twice^2", "($'Data'.$B$1*2)^2"},
        Case{"other", "#NAME?"}, Case{"Data!other", "#NAME?"}));

INSTANTIATE_TEST_SUITE_P(
    NamesOfFunctions, ToCalc,
    testing::Values(
        Case{"ceiling(A1,2)", "CEILING.XCL(A1;2)"}, Case{"_xlfn.SKEW.P(A1:A3)&1", "SKEWP(A1:A3)&1"},
        Case{"EDATE(A1,1)",
             "COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETEDATE(IF(ABS(A1)>2958465;#NUM!;A1);1)"},
        Case{"CEILING.MATH(A1)+sum(A1)", "CEILING.MATH(A1)+SUM(A1)"},
        Case{"\"x\"&ISODD(A1)", "\"x\"&IF(ISODD(A1);\"TRUE\";\"FALSE\")"}));

INSTANTIATE_TEST_SUITE_P(
    OtherCalls, ToCalc,
    testing::Values(Case{"FORMULATEXT(A1)", "\"=B1&\"\"!\"\"\""},
                    Case{"_xlfn.FORMULATEXT( Jan!A1 )&1", "\"=B1&\"\"!\"\"\"&1"},
                    Case{"FORMULATEXT(A1:B2)", "{\"=B1\";#N/A|#N/A;\"=B2\"}"},
                    Case{"CELL(\"filename\")", "\"/home/a/[Plan.xlsx]Data\""},
                    Case{"cell(\"FileName\",Jan!A1)", "\"/home/a/[Plan.xlsx]Jan\""},
                    Case{"CELL(\"address\",A1)",
                         "(ADDRESS(MIN(ROW(A1));MIN(COLUMN(A1));1;TRUE()))"},
                    Case{"CELL(\"address\",Jan!A1)",
                         "(\"Jan!\"&ADDRESS(MIN(ROW($'Jan'.A1));MIN(COLUMN($'Jan'.A1));1;TRUE()))"},
                    Case{"CELL(\"row\",A1)", "CELL(\"row\";A1)"}, Case{"SHEET(A1)", "SHEET(A1)"},
                    Case{"SHEETS()", "SHEETS()"}));

TEST(CalcExpression, CountsTheSheetsOfTheWorkbook) {
  ExpressionContext from = context;
  from.sheets = {"Jan", "Data", "Mar"};
  EXPECT_EQ(textOf("SHEET()+SHEETS( )", from), "2+3");
}

TEST(CalcExpression, SaysWhatNobodyCanTell) {
  for (const char* untold : {"FORMULATEXT(A9)", "FORMULATEXT(INDEX(A1,1))", "CELL(\"row\")",
                             "CELL(A1,B1)", "CELL(\"address\",INDEX((A1,Jan!A1),1))"}) {
    EXPECT_TRUE(calcExpression(untold, context)->reach.untold) << untold;
  }
  for (const char* told : {"FORMULATEXT(A1)", "CELL(\"row\",A1)", "CELL(\"width\",A1)"}) {
    EXPECT_FALSE(calcExpression(told, context)->reach.untold) << told;
  }
}

class NotAnExpression : public testing::TestWithParam<const char*> {};

TEST_P(NotAnExpression, GivesNothing) {
  EXPECT_EQ(textOf(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, NotAnExpression,
                         testing::Values("", "=", "1+", "(1", "1)", "foo(", "\"open", "'open",
                                         "1 2", "A1 \"x\"", "()", "*2", "A1:", "{1,2", "A1#", "1,2",
                                         "A1;B1", "SUM(1,2", "1.2.3", "a b(", "Table1[x", "?#",
                                         "endless"));

TEST(CalcExpression, PutsReferencesOnTheSheetItIsSeenFrom) {
  ExpressionContext from = context;
  from.from.sheet = "My Sheet";
  EXPECT_EQ(textOf("SUM(A1:B2,Data!C3)+here", from), "SUM(A1:B2;$'Data'.C3)+#NAME?");
  from.qualify = true;
  EXPECT_EQ(textOf("SUM(A1:B2,Data!C3)+here", from), "SUM($'My Sheet'.A1:B2;$'Data'.C3)+#NAME?");
}

TEST(CalcExpression, KnowsTheSheetsOfTheWorkbook) {
  ExpressionContext from = context;
  from.sheets = {"Data", "Jan", "Feb", "Mar"};
  EXPECT_EQ(textOf("jan!A1", from), "$'Jan'.A1");
  EXPECT_EQ(textOf("Dec!A1+1", from), "#REF!+1");
  EXPECT_EQ(textOf("Dec!here", from), "#REF!");
}

struct Reached {
  const char* excel;
  std::vector<std::string> cells;  // "Sheet!$A$1"
  bool shifts = false, spans = false, anywhere = false, traits = false, contents = false;
};

void PrintTo(const Reached& each, std::ostream* out) {
  *out << each.excel;
}

class Reaching : public testing::TestWithParam<Reached> {};

TEST_P(Reaching, TellsWhatTheResultDependsOn) {
  ExpressionContext from = context;
  from.sheets = {"Data", "Jan", "Feb", "Mar", "Local"};
  const auto result = calcExpression(GetParam().excel, from);
  ASSERT_TRUE(result);
  std::vector<std::string> cells;
  for (const RangeRef& range : result->reach.cells) {
    const std::string book = range.sheet.book == "Plan.xlsx" ? "" : "[" + range.sheet.book + "]";
    cells.push_back(book + range.sheet.sheet + "!" + addressText(range.areas));
  }
  EXPECT_EQ(cells, GetParam().cells);
  EXPECT_EQ(result->reach.shifts, GetParam().shifts);
  EXPECT_EQ(result->reach.spans, GetParam().spans);
  EXPECT_EQ(result->reach.anywhere, GetParam().anywhere);
  EXPECT_EQ(result->reach.traits, GetParam().traits);
  EXPECT_EQ(result->reach.contents, GetParam().contents);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Reaching,
    testing::Values(
        Reached{"1+LOG10(5)", {}}, Reached{"\"A1\"&TRUE", {}},
        Reached{"A1+$B$2:C3", {"Data!$A$1", "Data!$B$2:$C$3"}},
        Reached{"SUM(A:B,2:3)", {"Data!$A:$B", "Data!$2:$3"}},
        Reached{"mar!A1+[Other.ods]S!B2", {"Mar!$A$1", "[Other.ods]S!$B$2"}},
        Reached{"SUM(Feb:Mar!B2)", {"Feb!$B$2", "Mar!$B$2"}},
        Reached{"SUM(Mar:Jan!B2)", {"Jan!$B$2", "Feb!$B$2", "Mar!$B$2"}},
        Reached{"twice+Data!rate", {"Data!$B$1", "Local!$C$1"}},
        Reached{"SUM(Table1[Net, Sum])", {"Data!$A$2:$A$9"}}, Reached{"Dec!A1", {}},
        Reached{.excel = "A1:INDEX(B1:B4,2)", .cells = {"Data!$A$1", "Data!$B$2"}, .spans = true},
        Reached{.excel = "offset(A1,B1,1)", .cells = {"Data!$A$1", "Data!$B$1"}, .shifts = true},
        Reached{.excel = "INDIRECT(\"A1\")", .cells = {}, .anywhere = true},
        Reached{.excel = "SUBTOTAL(9,A1:A2)", .cells = {"Data!$A$1:$A$2"}, .traits = true},
        Reached{.excel = "isformula(A1)", .cells = {"Data!$A$1"}, .traits = true},
        Reached{.excel = "CELL(\"width\",A1)", .cells = {"Data!$A$1"}, .contents = true},
        Reached{.excel = "GETPIVOTDATA(\"a\",A1)", .cells = {"Data!$A$1"}, .contents = true}));

INSTANTIATE_TEST_SUITE_P(
    PartsOfLargeRanges, Reaching,
    testing::Values(
        Reached{"index(Jan!A:Z,5,5)", {"Jan!$E$5"}}, Reached{"INDEX(A:Z, 5 ,)", {"Data!$A$5:$Z$5"}},
        Reached{"INDEX(A:Z,,2)*1", {"Data!$B:$B"}}, Reached{"INDEX(A:Z,0,2)", {"Data!$B:$B"}},
        Reached{"INDEX(B2:B9,3)", {"Data!$B$4"}}, Reached{"INDEX(B2:F2,3)", {"Data!$D$2"}},
        Reached{"INDEX(B2:F9,3)", {"Data!$B$4:$F$4"}},
        Reached{"INDEX(B2:F9,9,1)", {"Data!$B$2:$B$9"}},
        Reached{"INDEX(A:Z,A1,2)", {"Data!$B:$B", "Data!$A$1"}},
        Reached{"INDEX(A:Z,1.5,2)", {"Data!$B:$B"}}, Reached{"INDEX(A:Z,{1,2},2)", {"Data!$B:$B"}},
        Reached{"INDEX((A:B,D:E),1,1,2)", {"Data!$A:$B", "Data!$D:$E"}},
        Reached{"INDEX(A1:C9+1,2,2)", {"Data!$A$1:$C$9"}},
        Reached{"INDEX(Table1[Net, Sum],2)", {"Data!$A$3"}},
        Reached{"VLOOKUP(A1,D:Z,4,FALSE)", {"Data!$A$1", "Data!$D:$D", "Data!$G:$G"}},
        Reached{"VLOOKUP(1,D:Z,1)", {"Data!$D:$D"}},
        Reached{"VLOOKUP(1,D:Z,A1)", {"Data!$D:$Z", "Data!$A$1"}},
        Reached{"VLOOKUP(1,D:Z,99)", {"Data!$D:$D"}},
        Reached{"HLOOKUP(1,Jan!3:9,4)", {"Jan!$3:$3", "Jan!$6:$6"}},
        Reached{"SUM(VLOOKUP(1,A:Z,2),INDEX(A:Z,3,4))", {"Data!$A:$A", "Data!$B:$B", "Data!$D$3"}},
        Reached{"OFFSET(A1:B2,3,1)", {"Data!$B$4:$C$5"}},
        Reached{"OFFSET(C3,-1,-2,2,)", {"Data!$A$2:$A$3"}},
        Reached{"OFFSET(A:Z,0,30,9,2)", {"Data!$AE$1:$AF$9"}},
        Reached{"OFFSET(A1,-1,0)", {"Data!$A$1"}},
        Reached{.excel = "OFFSET(A1,1,1,-2,1)", .cells = {"Data!$A$1"}, .shifts = true},
        Reached{.excel = "OFFSET(INDEX(A:B,1,1),1,1)", .cells = {"Data!$A$1"}, .shifts = true},
        Reached{"ROWS(A:Z)*COLUMNS(Jan!A:Z)", {"Data!$A$1", "Jan!$A$1"}}));

// Asked for only once the cells are too many.
TEST(CalcExpression, AsksWhichPartOfARangeIsTakenWhereItIsCalculated) {
  ExpressionContext from = context;
  std::vector<std::string> asked;
  from.valueOf = [&](const std::string& argument) -> std::optional<CellValue> {
    asked.push_back(argument);
    if (argument == "A1+1") return 3.0;
    if (argument == "A2") return CellError{"#N/A"};
    if (argument == "A3") return "three";
    return std::nullopt;
  };
  const auto cellsOf = [&from](const char* excel) {
    std::string cells;
    const auto result = calcExpression(excel, from);
    for (const RangeRef& range : result->reach.cells) cells += addressText(range.areas) + " ";
    return cells + (result->reach.shifts ? "shifts" : "");
  };
  EXPECT_EQ(cellsOf("INDEX(D:Z,A1+1,1)"), "$D:$D $A$1 ");
  EXPECT_EQ(cellsOf("OFFSET(D1,A1+1,0)"), "$D$1 $A$1 shifts");
  EXPECT_TRUE(asked.empty());
  from.placesAreAsked = true;
  EXPECT_EQ(cellsOf("INDEX(D:Z,A1+1,1)"), "$D$3 $A$1 ");
  EXPECT_EQ(cellsOf("INDEX(D:Z,A2,A1+1)"), "$F$1 $A$2 $A$1 ");  // an error, whatever they hold
  EXPECT_EQ(cellsOf("INDEX(D:Z,A3,A4)"), "$D:$Z $A$3 $A$4 ");
  EXPECT_EQ(cellsOf("VLOOKUP(1,D:Z,A1+1)"), "$D:$D $A$1 $F:$F ");
  EXPECT_EQ(cellsOf("OFFSET(D1,A1+1,0)"), "$D$4 $A$1 ");
  EXPECT_EQ(asked, (std::vector<std::string>{"A1+1", "A2", "A1+1", "A3", "A4", "A1+1", "A1+1"}));
  EXPECT_EQ(cellsOf("LET(x,1,INDEX(D:Z,x,1))"), "$D:$D ");  // a name of the formula's own
}

TEST(CalcExpression, WritesHowACellLooksWhereThatIsKnown) {
  ExpressionContext from = context;
  from.sheets = {"Data", "Jan"};
  from.looks = [](const std::string& kind, const RangeRef& cell) -> std::optional<CellValue> {
    if (kind == "PREFIX") return "\"";
    if (kind == "COLOR") return std::nullopt;
    return static_cast<double>(cell.areas.front().firstRow) + (cell.sheet.sheet == "Jan" ? 0.5 : 0);
  };
  from.valueOf = [](const std::string& argument) -> std::optional<CellValue> {
    if (argument == "A9") return "Width";
    if (argument == "CELL(\"address\",INDEX(Jan!A:C,2,1))") return "Jan!$A$2";
    return std::nullopt;
  };
  EXPECT_EQ(textOf("CELL(\"width\",A7)+1", from), "7+1");
  EXPECT_EQ(textOf("CELL(\"Format\",Jan!B3:C9)", from), "3.5");
  EXPECT_EQ(textOf("CELL(\"prefix\",A1)&1", from), "\"\"\"\"&1");
  EXPECT_EQ(textOf("CELL(A9,A4)", from), "4");
  EXPECT_EQ(textOf("CELL(A9,Jan!A4)", from), "4.5");
  EXPECT_EQ(textOf("CELL(\"width\",INDEX(Jan!A:C,2,1))", from), "2.5");
  EXPECT_EQ(textOf("CELL(\"row\",A4:B5)", from), "CELL(\"row\";INDEX(A4:B5;1;1))");
  EXPECT_FALSE(calcExpression("CELL(\"width\",A1)", from)->reach.contents);
  for (const char* unknown : {"CELL(\"color\",A1)", "CELL(\"width\",INDEX(A:C,2,1))"}) {
    EXPECT_TRUE(calcExpression(unknown, from)->reach.contents) << unknown;
  }
}

TEST(CalcExpression, WritesTheCellsThatIndirectFindsWhereTheyAreKnown) {
  ExpressionContext from = context;
  std::vector<std::string> asked;
  from.referent = [&](const std::string& argument) -> std::optional<std::string> {
    asked.push_back(argument);
    if (argument == "unknown") return std::nullopt;
    return argument == "nowhere" ? "" : "Jan!$B$2:$B$4";
  };
  const auto known = calcExpression("SUM(indirect(\"A)\"&(B1+LEN(\",\")))*2)", from);
  ASSERT_TRUE(known);
  EXPECT_EQ(known->text, "SUM($'Jan'.$B$2:$B$4*2)");
  EXPECT_FALSE(known->reach.anywhere);
  ASSERT_EQ(known->reach.cells.size(), 1U);
  EXPECT_EQ(asked, std::vector<std::string>{"\"A)\"&(B1+LEN(\",\"))"});
  const auto none = calcExpression("MATCH(1,INDIRECT(nowhere),0)", from);
  ASSERT_TRUE(none);
  EXPECT_EQ(none->text, "MATCH(1;INDIRECT(\"\");0)");
  EXPECT_FALSE(none->reach.anywhere);

  for (const char* open : {"INDIRECT(unknown)", "INDIRECT(\"R1C1\",FALSE)"}) {
    const auto result = calcExpression(open, from);
    ASSERT_TRUE(result) << open;
    EXPECT_TRUE(result->reach.anywhere) << open;
  }
  EXPECT_FALSE(calcExpression("INDIRECT(\"A1\"", from));
  EXPECT_EQ(asked.size(), 3U);
}

TEST(CalcExpression, WritesTheNumberOfAnErrorThatIsKnown) {
  ExpressionContext from = context;
  from.errorOf = [](const std::string& argument) -> std::optional<std::string> {
    if (argument == "A1") return std::nullopt;
    return argument == "1" ? "" : "#REF!";
  };
  EXPECT_EQ(textOf("\"e\"&ERROR.TYPE(MATCH(1,A1,0))&1", from), "\"e\"&4&1");
  EXPECT_EQ(textOf("IFERROR(error.type(1),2)", from), "IFERROR(#N/A;2)");
  EXPECT_TRUE(textOf("ERROR.TYPE(A1)", from).value().starts_with("LOOKUP(ERRORTYPE("));
}

TEST(CalcExpression, GivesExcelsErrorNumbersForCalcsOwnErrors) {
  const auto text = textOf("IFERROR(A1,\"e\"&ERROR.TYPE(A1))", context);
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->starts_with("IFERROR(A1;\"e\"&LOOKUP(ERRORTYPE(A1);{501;502;")) << *text;
  EXPECT_TRUE(text->ends_with("))")) << *text;
}

TEST(CalcExpression, TellsWhatGivesOneValueWhateverTheCellsHold) {
  for (const char* one :
       {"1+2", "\"a\"&TRUE", "#N/A", "A1*Jan!B2", "-(A1+1)%", "SUM(A1:A3)*2", "sum(A:A,{1,2})+B1",
        "IF(MAX(A1:B2)>2,LEFT(A1,2),\"none\")", "ROUND(SUM(A1:A3*B1:B3),2)", "Data!#REF!+1",
        "rate*2", "SUM(Table1[Net, Sum])", "AND(A1:A3>1)"}) {
    const auto result = calcExpression(one, context);
    ASSERT_TRUE(result) << one;
    EXPECT_TRUE(result->single) << one;
  }
  for (const char* several : {"A1:A3",
                              "A1:A3*2",
                              "(A1:A3)",
                              "2*(1+A1:A3)",
                              "{1,2}+1",
                              "A1,B1",
                              "A1:C3 B2",
                              "A:A",
                              "1:1",
                              "Jan:Mar!B2",
                              "A1:INDEX(A:A,3)",
                              "IF(A1:A3>1,1,2)",
                              "IF(1,{1,2},3)",
                              "ROUND(A1:A3,0)",
                              "OFFSET(A1,0,0,2,2)",
                              "TRANSPOSE(A1)",
                              "ROW(A1)",
                              "FREQUENCY(1,2)",
                              "SEQUENCE(3)",
                              "IF(1,SEQUENCE(3),1)",
                              "SUM(1)+MUNIT(2)",
                              "Table1[Net, Sum]",
                              "other",
                              "Data!other"}) {
    const auto result = calcExpression(several, context);
    ASSERT_TRUE(result) << several;
    EXPECT_FALSE(result->single) << several;
  }
}

}  // namespace
}  // namespace quorin::host::calc
