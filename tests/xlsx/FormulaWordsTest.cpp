#include <gtest/gtest.h>

#include "tests/xlsx/FormulaWords.h"
#include "tests/xlsx/StoredWorkbook.h"

namespace quorin::xlsx {
namespace {

void expectSame(const char* a, const char* b) {
  EXPECT_EQ(formulaWords(a), formulaWords(b)) << a << " and " << b;
}

void expectOther(const char* a, const char* b) {
  EXPECT_NE(formulaWords(a), formulaWords(b)) << a << " and " << b;
}

TEST(FormulaWords, TakeSpellingsOfTheSameForEqual) {
  expectSame("=sum( A1 , b2 )", "=SUM(A1,B2)");
  expectSame("='Sheet1'!A1", "=Sheet1!A1");
  expectSame("='It''s'!A1", "='it''s'!a1");
  expectSame("=1.50+1E2+.5", "=1.5+100+0.5");
  expectSame("=_xlfn.CONCAT(A1)&_xlfn._xlws.FILTER(A1,B1)", "=CONCAT(A1)&FILTER(A1,B1)");
  expectSame("=A1 <= B1", "=A1<=B1");
  expectSame("='C:\\x\\[B.xlsx]S'!A1", "=[B.xlsx]S!A1");
  expectSame("='file:///tmp/[B.xlsx]S 1'!A1", "='[B.xlsx]S 1'!A1");
}

TEST(FormulaWords, TellOtherFormulasApart) {
  expectOther("=A1", "=$A1");
  expectOther("=A1:B2", "=A1,B2");
  expectOther("=\"a\"", "=\"A\"");
  expectOther("=\"a b\"", "=\"ab\"");
  expectOther("=A1 B1", "=A1B1");
  expectOther("=SUM(A1:A3 A2:B2)", "=SUM(A1:A3,A2:B2)");
  expectOther("=#REF!", "=#N/A");
  expectOther("=S!A1", "=A1");
  expectOther("=1.5", "=1.6");
  expectOther("=3:5", "=3:6");
}

TEST(FormulaWords, KnowOtherWorkbooksByNumber) {
  EXPECT_EQ(formulaWords("=[1]S!A1+'[2]S 2'!B1", {"One.xlsx", "Two.xlsx"}),
            formulaWords("=[One.xlsx]S!A1+'[Two.xlsx]S 2'!B1"));
}

TEST(MovedFormula, MovesRelativeReferences) {
  const struct {
    const char* formula;
    const char* moved;
  } examples[] = {
      {"A1+$A1+A$1+$A$1", "C2+$A2+C$1+$A$1"},
      {"SUM(A1:B2)", "SUM(C2:D3)"},
      {"SUM(A:B,$A:B,3:5,$3:5)", "SUM(C:D,$A:D,4:6,$3:6)"},
      {"'A1 B2'!A1&Sheet1!A1", "'A1 B2'!C2&Sheet1!C2"},
      {"\"A1\"&A1", "\"A1\"&C2"},
      {"LOG10(A1)+TRUE+Rate+T[A1]+_xlfn.X1(A1)", "LOG10(C2)+TRUE+Rate+T[A1]+_xlfn.X1(C2)"},
      {"A1048576", "C1"},
      {"XFD1", "B2"},
      {"1.5*10+A1", "1.5*10+C2"},
      {"[1]S1!A1", "[1]S1!C2"},
      {"#REF!+A1", "#REF!+C2"},
  };
  for (const auto& example : examples)
    EXPECT_EQ(movedFormula(example.formula, 1, 2), example.moved) << example.formula;
}

}  // namespace
}  // namespace quorin::xlsx
