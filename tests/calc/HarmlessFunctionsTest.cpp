#include <gtest/gtest.h>

#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/grammar/HarmlessFunctions.h"

namespace quorin::host::calc {
namespace {

TEST(HarmlessFunctions, AreThoseOfTheListAlone) {
  for (const char* harmless : {"ABS", "SUM", "YIELDMAT", "ZTEST", "INDIRECT", "T.DIST.2T", "N", "T",
                               "ORG.LIBREOFFICE.REGEX", "HYPERLINK", "MULTIPLE.OPERATIONS"}) {
    EXPECT_TRUE(isHarmless(harmless)) << harmless;
  }
  for (const char* reaching : {"WEBSERVICE",  "FILTERXML",    "DDE",         "RTD",
                               "IMAGE",       "CALL",         "REGISTER.ID", "CUBEVALUE",
                               "SQL.REQUEST", "STOCKHISTORY", "PY",          "ORG.OPENOFFICE.STYLE",
                               "NOSUCH",      "EXEC",         "GET.CELL",    "",
                               " ",           "SU",           "UM",          "ABS ACCRINT",
                               "\n",          "sum",          "SUM\n",       "WEBſERVICE"}) {
    EXPECT_FALSE(isHarmless(reaching)) << reaching;
  }
}

TEST(HarmlessFunctions, TellOthersInAFewLetters) {
  EXPECT_EQ(reachText("RTD"), "Runs “RTD”, so only when you ask.");
  std::string endless;
  for (int i = 0; i < 100; ++i) endless += "ä";
  EXPECT_EQ(reachText("x" + endless),
            "Runs “x" + endless.substr(0, 58) + "”, so only when you ask.");
}

std::optional<std::string> written(const std::string& excel, const ExpressionContext& context) {
  const auto result = calcExpression(excel, context);
  return result ? std::optional(result->text) : std::nullopt;
}

int numberOf(const std::string& excel, const ExpressionContext& context) {
  try {
    calcExpression(excel, context);
  } catch (const SpreadsheetError& error) {
    return error.number();
  }
  return 0;
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(BoundedExpression, AsksForEachNameOnce) {
  int asked = 0;
  // x_1 is x_0 eight times, x_2 is x_1 eight times, and so on.
  const ExpressionContext context{
      .from = {"Plan.xlsx", "Data"},
      .meaning = [&](const SheetRef&, const std::string& name) -> std::optional<std::string> {
        ++asked;
        const int level = std::stoi(name.substr(2));
        if (level == 0) return "Data!$A$1";
        const std::string one = "x_" + std::to_string(level - 1);
        return one + repeated("&" + one, 7);
      }};
  EXPECT_EQ(written("x_1", context), "($'Data'.$A$1" + repeated("&$'Data'.$A$1", 7) + ")");
  EXPECT_EQ(asked, 2);
  asked = 0;
  EXPECT_TRUE(written("x_3", context));
  EXPECT_EQ(asked, 4);
  asked = 0;
  EXPECT_EQ(numberOf("x_18", context), -50);
  EXPECT_LE(asked, 19);
}

TEST(BoundedExpression, EndsAtNamesThatGoRoundInACircleOrDownWithoutEnd) {
  int asked = 0;
  ExpressionContext context{
      .from = {"Plan.xlsx", "Data"},
      .meaning = [&](const SheetRef&, const std::string& name) -> std::optional<std::string> {
        ++asked;
        if (name == "a") return "b&b&b";
        if (name == "b") return "1+a+a";
        return name + "x";
      }};
  EXPECT_EQ(written("a", context), std::nullopt);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(numberOf("x", context), -50);
  EXPECT_LT(asked, 500);
  context.checkpoint = [] { throw SpreadsheetError(-1712, "over"); };
  EXPECT_EQ(numberOf("a", context), -1712);
}

TEST(BoundedExpression, IsNoLongerOrDeeperThanTheOfficesOwnParserBears) {
  const ExpressionContext context{.from = {"Plan.xlsx", "Data"}};
  EXPECT_EQ(written(repeated("-", 4000) + "1", context), "--1");
  EXPECT_EQ(written(repeated("-", 4001) + "1", context), "-1");
  EXPECT_EQ(written("2---1", context), "2---1");
  EXPECT_EQ(written("2----1", context), "2--1");
  EXPECT_EQ(numberOf(repeated("+-", 2000) + "1", context), -50);
  EXPECT_EQ(written(repeated("(", 300) + "1" + repeated(")", 300), context),
            repeated("(", 300) + "1" + repeated(")", 300));
  EXPECT_EQ(numberOf(repeated("(", 4000) + "1" + repeated(")", 4000), context), -50);
  EXPECT_EQ(numberOf(repeated("ABS(-", 300) + "1" + repeated(")", 300), context), -50);
  EXPECT_TRUE(written("A1" + repeated("+A1", 2000), context));
  EXPECT_EQ(numberOf("A1" + repeated("+A1", 6000), context), -50);
  EXPECT_EQ(numberOf(repeated("1+", 40'000) + "1", context), -50);
}

TEST(BoundedExpression, TellsThatCellsAreFoundByATextThatIsWorkedOut) {
  const ExpressionContext context{
      .from = {"Plan.xlsx", "Data"},
      .meaning = [&](const SheetRef&, const std::string&) -> std::optional<std::string> {
        return "INDIRECT(Data!$A$1)";
      }};
  for (const char* byText : {"INDIRECT(A1)", "1+INDIRECT(\"A\"&1,TRUE)", "LEN(name)",
                             "INDIRECT(\"'file:///a.ods'#$b.A1\")", "INDIRECT(\"[a.xlsx]b!A1\")"}) {
    EXPECT_TRUE(calcExpression(byText, context)->reach.byText) << byText;
  }
  for (const char* plain :
       {"INDIRECT(\"A1\")", "SUM(INDIRECT(\"Data!A1:B2\",TRUE))", "OFFSET(A1,1,1)"}) {
    EXPECT_FALSE(calcExpression(plain, context)->reach.byText) << plain;
  }
}

TEST(BoundedExpression, HoldsConstantsAloneInArrays) {
  const ExpressionContext context{.from = {"Plan.xlsx", "Data"}};
  EXPECT_EQ(written("{1,-2.5E+3;\"a'b\",2;TRUE,FALSE}", context),
            "{1;-2.5E+3|\"a'b\";2|TRUE;FALSE}");
  for (const char* other : {"{A1:A2}", "{'file:///a'#$b.A1}", "{[a.xlsx]b!A1}", "{$A$1}"}) {
    EXPECT_EQ(written(other, context), std::nullopt) << other;
  }
}

TEST(BoundedExpression, KnowsTheNamesThatItGivesItself) {
  const ExpressionContext context{
      .from = {"Plan.xlsx", "Data"},
      .meaning = [&](const SheetRef&, const std::string& name) -> std::optional<std::string> {
        return name == "w" ? std::optional<std::string>("RTD(1)") : std::nullopt;
      }};
  EXPECT_EQ(written("LET(x,1,y , x+1,x*y)", context), "LET(x;1;y ; x+1;x*y)");
  EXPECT_EQ(written("LET(w,1,w+z)", context), "LET(w;1;w+#NAME?)");
  EXPECT_EQ(numberOf("LET(x,w,x)", context), onlyWhenAsked);
  EXPECT_EQ(numberOf("LET(x,1,w)", context), onlyWhenAsked);
  EXPECT_EQ(numberOf("LET(w,w,w)", context), onlyWhenAsked);
  EXPECT_EQ(numberOf("LET(x,LET(w,1,w),w)", context), onlyWhenAsked);
  EXPECT_EQ(numberOf("LET(x,w,LET(w,1,w+x))", context), onlyWhenAsked);
  EXPECT_EQ(numberOf("LAMBDA(w,w)+w", context), onlyWhenAsked);
  EXPECT_EQ(written("LAMBDA(w,v,w+v)", context), "LAMBDA(w;v;w+v)");
  EXPECT_EQ(written("LET(w,1,SUM(w,LET(v,w,v)))", context), "LET(w;1;SUM(w;LET(v;w;v)))");
  EXPECT_EQ(written("other+1", context), "#NAME?+1");
}

TEST(BoundedExpression, PutsAllValuesOfLetAroundItselfWhereTheOfficeHasLet) {
  const ExpressionContext context{
      .from = {"Plan.xlsx", "Data"},
      .knows = [](const std::string& function) { return function == "LET"; },
      .meaning = [&](const SheetRef&, const std::string& name) -> std::optional<std::string> {
        if (name == "tripled") return "LET(a,2,a*3)";
        return name == "x" ? std::optional<std::string>("7") : std::nullopt;
      }};
  EXPECT_EQ(written("LET(x,1,X+1)", context), "LET(_quorin1;1;(_quorin1+1))");
  EXPECT_EQ(written("x+LET(x,1,x)", context), "LET(_quorin1;1;7+(_quorin1))");
  EXPECT_EQ(written("LET( x , A1:A3 ,y,x*2,SUM(x*y))", context),
            "LET(_quorin1; A1:A3 ;_quorin2;_quorin1*2;(SUM(_quorin1*_quorin2)))");
  EXPECT_EQ(written("LET(x,LET(y,1,y+1),LET(x,x+1,SUM(x,2)))*2", context),
            "LET(_quorin2;1;_quorin1;(_quorin2+1);_quorin3;_quorin1+1;((SUM(_quorin3;2)))*2)");
  EXPECT_EQ(written("LET(a,7,tripled+a)", context),
            "LET(_quorin1;7;_quorin2;2;(((_quorin2*3))+_quorin1))");
  EXPECT_EQ(written("LET(x,1,y)", context), "LET(_quorin1;1;(#NAME?))");
  for (const char* malformed : {"LET(x,1)", "LET(x)", "LET(1,2,3)", "LET(x,1,y,2)", "LET(x,,x)",
                                "LET(A1,1,A1)", "LET(,1,2)", "LET(x,1,)", "LET((x),1,2)"}) {
    EXPECT_EQ(written(malformed, context), std::nullopt) << malformed;
  }
  EXPECT_TRUE(calcExpression("LET(x,1,x&\"a\")", context)->single);
  EXPECT_FALSE(calcExpression("LET(x,A1:A3,x&\"a\")", context)->single);
  EXPECT_TRUE(calcExpression("LET(x,A1:A3,SUM(x))", context)->single);
}

}  // namespace
}  // namespace quorin::host::calc
