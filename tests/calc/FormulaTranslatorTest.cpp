#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/calc/grammar/FormulaTranslator.h"

namespace quorin::host::calc {
namespace {

struct Case {
  const char* calc;
  const char* excel;
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << each.calc;
}

class ToExcel : public testing::TestWithParam<Case> {};

TEST_P(ToExcel, WritesWhatExcelWouldWrite) {
  EXPECT_EQ(excelFormula(GetParam().calc, ReferenceStyle::a1, {1, 1}), GetParam().excel);
}

INSTANTIATE_TEST_SUITE_P(
    Separators, ToExcel,
    testing::Values(Case{"=SUM(A2;B2)", "=SUM(A2,B2)"}, Case{"=SUM( A2 ; B2 )", "=SUM( A2 , B2 )"},
                    Case{"=OFFSET(A2;1;;2)", "=OFFSET(A2,1,,2)"},
                    Case{"=IF(A2>=1;\"a;b\";\"~!|\")", "=IF(A2>=1,\"a;b\",\"~!|\")"},
                    Case{"=\"a\"\"b;c\"&B1", "=\"a\"\"b;c\"&B1"},
                    Case{"=1.5E+300*2%", "=1.5E+300*2%"}, Case{"=-A2^2", "=-A2^2"},
                    Case{"=A2<>B2", "=A2<>B2"}, Case{"={1;2|3;4}", "={1,2;3,4}"},
                    Case{"={1.5;\"a;b\"|TRUE;#N/A}", "={1.5,\"a;b\";TRUE,#N/A}"},
                    Case{"{=A1:B2*{1;2}}", "=A1:B2*{1,2}"}));

INSTANTIATE_TEST_SUITE_P(
    References, ToExcel,
    testing::Values(Case{"=$Sheet2.A1", "=Sheet2!A1"}, Case{"=Sheet2.$A$1", "=Sheet2!$A$1"},
                    Case{"=SUM($'My Sheet'.A1:B2)", "=SUM('My Sheet'!A1:B2)"},
                    Case{"=$'2020'.$A$1", "='2020'!$A$1"}, Case{"=$'Ä''ö'.A1", "='Ä''ö'!A1"},
                    Case{"=$A1.A1", "='A1'!A1"}, Case{"=$'a.b'.A1", "=a.b!A1"},
                    Case{"=$RC.A1", "='RC'!A1"}, Case{"=$weiß_x.A1", "=weiß_x!A1"},
                    Case{"=$'a-b'.A1", "='a-b'!A1"}, Case{"=SUM(A:A)", "=SUM(A:A)"},
                    Case{"=SUM($2:$5)", "=SUM($2:$5)"}, Case{"=SUM(A1:A1048576)", "=SUM(A:A)"},
                    Case{"=SUM($A2:$XFD3)", "=SUM(2:3)"},
                    Case{"=SUM(A2:A1048576)", "=SUM(A2:A1048576)"},
                    Case{"=SUM($Sheet2.A:B)", "=SUM(Sheet2!A:B)"},
                    Case{"=SUM($Sheet1.A2:$Sheet3.B3)", "=SUM(Sheet1:Sheet3!A2:B3)"},
                    Case{"=SUM($'My Sheet'.A2:$Sheet3.A2)", "=SUM('My Sheet:Sheet3'!A2)"},
                    Case{"=SUM(A2:A5~C2:C4)", "=SUM((A2:A5,C2:C4))"},
                    Case{"=SUM((A2:A5~C2:C4))", "=SUM((A2:A5,C2:C4))"}, Case{"=A1~B2", "=(A1,B2)"},
                    Case{"=LARGE(A1~B1;1)", "=LARGE((A1,B1),1)"},
                    Case{"=SUM(A2:B5!B2:C4)", "=SUM(A2:B5 B2:C4)"},
                    Case{"=A2:INDEX(B1:B4;2)", "=A2:INDEX(B1:B4,2)"},
                    Case{"=$Sheet1.rate*2", "=Sheet1!rate*2"},
                    Case{"='file:///tmp/x%20y.ods'#$Sheet1.A1", "='/tmp/[x y.ods]Sheet1'!A1"},
                    Case{"='file:///tmp/x.ods'#$'My Sheet'.A1:B2", "='/tmp/[x.ods]My Sheet'!A1:B2"},
                    Case{"='file:///tmp/x.ods'#rate", "='/tmp/x.ods'!rate"}));

INSTANTIATE_TEST_SUITE_P(NamesOfFunctions, ToExcel,
                         testing::Values(Case{"=FLOOR.XCL(A2;1)", "=FLOOR(A2,1)"},
                                         Case{"=CEILING.XCL(A2;1)", "=CEILING(A2,1)"},
                                         Case{"=FORMULA(A2)", "=FORMULATEXT(A2)"},
                                         Case{"=SKEWP(A2:A5)", "=SKEW.P(A2:A5)"},
                                         Case{"=EFFECTIVE(A2;4)", "=EFFECT(A2,4)"},
                                         Case{"=DURATION(A2;1;2)", "=PDURATION(A2,1,2)"},
                                         Case{"=B(5;0.5;2)", "=BINOM.DIST.RANGE(5,0.5,2)"},
                                         Case{"=FLOOR(A2;1)", "=ORG.OPENOFFICE.FLOOR(A2,1)"},
                                         Case{"=B+FORMULA", "=B+FORMULA"}));

INSTANTIATE_TEST_SUITE_P(
    Errors, ToExcel,
    testing::Values(Case{"=#REF!+1", "=#REF!+1"}, Case{"=$#REF!.B5+1", "=#REF!+1"},
                    Case{"=SUM($#REF!.B5:C9)", "=SUM(#REF!)"}, Case{"=D#REF!", "=#REF!"},
                    Case{"=SUM(D#REF!:E#REF!)", "=SUM(#REF!)"}, Case{"=#REF!5*2", "=#REF!*2"},
                    Case{"=$Sheet3.C#REF!", "=Sheet3!#REF!"},
                    Case{"=values!#ref!", "=values!#REF!"},
                    Case{"='my model'!#REF!/2", "='my model'!#REF!/2"},
                    Case{"='it''s'!#ref!", "='it''s'!#REF!"},
                    Case{"='model'!#REF!", "=model!#REF!"}, Case{"='label'", "='label'"},
                    Case{"=IF(A1;#REF!;2)", "=IF(A1,#REF!,2)"}, Case{"=#DIV/0!", "=#DIV/0!"},
                    Case{"=IFERROR(#NULL!;#N/A)", "=IFERROR(#NULL!,#N/A)"}));

INSTANTIATE_TEST_SUITE_P(
    Names, ToExcel,
    testing::Values(Case{"=COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETEDATE(A2;1)", "=EDATE(A2,1)"},
                    Case{"=_xlfn.let(_xlpm.x;1;_xlpm.x)", "=LET(x,1,x)"},
                    Case{"=_xlfn._xlws.filter(A1:A3;B1:B3)", "=FILTER(A1:A3,B1:B3)"},
                    Case{"=LOG10(A2)", "=LOG10(A2)"}, Case{"=STDEV.S(A2:A3)", "=STDEV.S(A2:A3)"},
                    Case{"=F.DIST(1;2;3;TRUE())", "=F.DIST(1,2,3,TRUE)"},
                    Case{"=Base.Year+tax", "=Base.Year+tax"}, Case{"=foo(1)", "=FOO(1)"},
                    Case{"=SUM(Table1[[#This Row];[Net; Sum]])",
                         "=SUM(Table1[[#This Row],[Net; Sum]])"},
                    Case{"=Table1[[#all];[A]:[B]]", "=Table1[[#All],[A]:[B]]"},
                    Case{"=SUM(Table1[Tax '[%']])", "=SUM(Table1[Tax '[%']])"}));

// A name may be spelled like a reference to another sheet.
TEST(ToExcel, TellsNamesFromReferencesByTheSheetsThereAre) {
  const IsSheet isSheet = [](const std::string& name) { return name == "Unit"; };
  const auto at = [&](const char* text) {
    return excelFormula(text, ReferenceStyle::a1, {1, 1}, isSheet);
  };
  EXPECT_EQ(at("=GWP.CH4*2"), "=GWP.CH4*2");
  EXPECT_EQ(at("=SUM(Mol.m2;1)"), "=SUM(Mol.m2,1)");
  EXPECT_EQ(at("=Unit.M2"), "=Unit!M2");
  EXPECT_EQ(at("=$GWP.CH4"), "=GWP!CH4");
  EXPECT_EQ(at("=$'GWP'.CH4"), "=GWP!CH4");
}

// What one formula leaves behind must not show in the next.
TEST(FormulaTranslator, TranslatesEachFormulaAsIfItWereTheOnlyOne) {
  FormulaTranslator translator(ReferenceStyle::a1);
  const auto at = [&](const char* text) { return translator.excelFormula(text, {1, 1}); };
  EXPECT_EQ(at("=SUM(($'it''s'.A1~B2"), "=SUM(('it''s'!A1,B2");
  EXPECT_EQ(at("=$'it''s'.C3+A1~B2"), "=('it''s'!C3+A1,B2)");
  EXPECT_EQ(at("=$Data.A1048576+Data.$XFD$1"), "=Data!A1048576+Data!$XFD$1");
  EXPECT_EQ(at("=SUM($Data.A1:A1048576;$Data.$A2:$XFD3)"), "=SUM(Data!A:A,Data!2:3)");
  EXPECT_EQ(at("=$Data.AA100:$AB$200*0.25"), "=Data!AA100:$AB$200*0.25");
  EXPECT_EQ(at("=Data.rate+$Data.rate"), "=Data.rate+Data!rate");
  EXPECT_EQ(at("=$'Data'.B2&$#REF!.B2"), "=Data!B2&#REF!");
}

TEST(FormulaTranslator, KeepsManySheetsApart) {
  FormulaTranslator translator(ReferenceStyle::a1);
  for (int round = 0; round < 2; ++round) {
    for (int sheet = 1; sheet <= 40; ++sheet) {
      const std::string first = "P" + std::to_string(sheet) + "_", last = "Q" + first;
      EXPECT_EQ(translator.excelFormula("=SUM($" + first + ".A1:$" + last + ".B2)", {1, 1}),
                "=SUM(" + first + ":" + last + "!A1:B2)");
    }
  }
}

TEST(FormulaTranslator, AsksAboutEachSheetOnce) {
  std::vector<std::string> asked;
  FormulaTranslator translator(ReferenceStyle::a1, [&](const std::string& name) {
    asked.push_back(name);
    return name == "Unit";
  });
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(translator.excelFormula("=Unit.M2+GWP.CH4*1.5", {1, 1}), "=Unit!M2+GWP.CH4*1.5");
  }
  EXPECT_THAT(asked, testing::ElementsAre("Unit", "GWP"));
}

TEST(ToR1C1, CountsRelativePartsFromTheCell) {
  const auto at = [](const char* text) { return excelFormula(text, ReferenceStyle::r1c1, {2, 3}); };
  EXPECT_EQ(at("=B2*2"), "=RC[-1]*2");
  EXPECT_EQ(at("=C2"), "=RC");
  EXPECT_EQ(at("=SUM(A1:$B$4)"), "=SUM(R[-1]C[-2]:R4C2)");
  EXPECT_EQ(at("=$Sheet2.D$9"), "=Sheet2!R9C[1]");
  EXPECT_EQ(at("=SUM(A:A)+SUM($B:$D)"), "=SUM(C[-2])+SUM(C2:C4)");
  EXPECT_EQ(at("=SUM(2:3)"), "=SUM(R:R[1])");
}

}  // namespace
}  // namespace quorin::host::calc
