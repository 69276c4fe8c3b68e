#include <gtest/gtest.h>

#include "host/calc/CalcExpression.h"

namespace quorin::host::calc {
namespace {

const ExpressionContext context{"Plan.xlsx",
                                [](const std::string& book) -> std::optional<std::string> {
                                  if (book != "Other.ods") return std::nullopt;
                                  return "file:///home/a/Other.ods";
                                }};

struct Case {
  const char* excel;
  const char* calc;
};

class ToCalc : public testing::TestWithParam<Case> {};

TEST_P(ToCalc, WritesWhatCalcStores) {
  EXPECT_EQ(calcExpression(GetParam().excel, context), GetParam().calc);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ToCalc,
    testing::Values(Case{"1+2", "1+2"}, Case{"=1+2", "1+2"}, Case{" = 1 + 2 ", " 1 + 2"},
                    Case{"SUM(A1,B2)", "SUM(A1;B2)"}, Case{"SUM(A1;B2)", "SUM(A1;B2)"},
                    Case{"IF(A1,,2)", "IF(A1;;2)"},
                    Case{"IF(A1,\"a,b;\"\"c\",2)", "IF(A1;\"a,b;\"\"c\";2)"},
                    Case{"{1,2;3,4}", "{1;2|3;4}"}, Case{"{\"a,b\";-1}", "{\"a,b\"|-1}"},
                    Case{"Sheet2!A1", "$'Sheet2'.A1"}, Case{"'It''s'!$A$1:B2", "$'It''s'.$A$1:B2"},
                    Case{"[Plan.xlsx]Data!A1", "$'Data'.A1"},
                    Case{"'[Plan.xlsx]My Data'!A:C", "$'My Data'.A:C"},
                    Case{"[Other.ods]Data!A1", "'file:///home/a/Other.ods'#$'Data'.A1"},
                    Case{"[Gone.xlsx]Data!A1+1", "#REF!+1"},
                    Case{"SUM(Jan:Mar!B2)", "SUM($'Jan'.B2:$'Mar'.B2)"},
                    Case{"SUM(2:$5)", "SUM(2:$5)"}, Case{"SUM((A1:A2,C3))", "SUM((A1:A2~C3))"},
                    Case{"A1:C3 B2:D4", "A1:C3!B2:D4"}, Case{"SUM(rate tax)", "SUM(rate!tax)"},
                    Case{"A1:INDEX(B1:B4,2)", "A1:INDEX(B1:B4;2)"},
                    Case{"Sheet2!rate*2", "$'Sheet2'.rate*2"}, Case{"TRUE", "TRUE()"},
                    Case{"IF(true,1,FALSE)", "IF(TRUE();1;FALSE())"}, Case{"TRUE()", "TRUE()"},
                    Case{"-5%^2", "-5%^2"}, Case{"A1<>B1", "A1<>B1"},
                    Case{"A1>=-1.5E+3", "A1>=-1.5E+3"}, Case{"A1<=+1", "A1<=+1"},
                    Case{".5*2.", ".5*2."}, Case{"IFERROR(#REF!,#N/A)", "IFERROR(#REF!;#N/A)"},
                    Case{"Data!#REF!+1", "#REF!+1"}, Case{"LOG10(A1)", "LOG10(A1)"},
                    Case{"_xlfn.XLOOKUP(1,A:A,B:B)", "XLOOKUP(1;A:A;B:B)"}, Case{"@A1:A3", "A1:A3"},
                    Case{"Table1[[#This Row],[Net, Sum]]", "Table1[[#This Row];[Net, Sum]]"},
                    Case{"SUM(Table1[@Net])", "SUM(Table1[[#This Row];[Net]])"},
                    Case{"Table1[@[Net Sum]]", "Table1[[#This Row];[Net Sum]]"},
                    Case{"Table1[Net]*2", "Table1[Net]*2"}));

class NotAnExpression : public testing::TestWithParam<const char*> {};

TEST_P(NotAnExpression, GivesNothing) {
  EXPECT_EQ(calcExpression(GetParam(), context), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, NotAnExpression,
                         testing::Values("", "=", "1+", "(1", "1)", "foo(", "\"open", "'open",
                                         "1 2", "A1 \"x\"", "()", "*2", "A1:", "{1,2", "A1#", "1,2",
                                         "A1;B1", "SUM(1,2", "1.2.3", "a b(", "Table1[x", "?#"));

TEST(CalcExpression, PutsReferencesOnTheSheetItIsSeenFrom) {
  ExpressionContext from = context;
  from.sheet = "My Sheet";
  EXPECT_EQ(calcExpression("SUM(A1:B2,Data!C3)+rate", from),
            "SUM($'My Sheet'.A1:B2;$'Data'.C3)+rate");
}

TEST(CalcExpression, GivesExcelsErrorNumbersForCalcsOwnErrors) {
  const auto text = calcExpression("IFERROR(A1,\"e\"&ERROR.TYPE(A1))", context);
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->starts_with("IFERROR(A1;\"e\"&LOOKUP(ERRORTYPE(A1);{501;502;")) << *text;
  EXPECT_TRUE(text->ends_with("))")) << *text;
}

}  // namespace
}  // namespace quorin::host::calc
