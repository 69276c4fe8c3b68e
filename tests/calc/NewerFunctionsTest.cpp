// What only newer offices work out: asked for by the verbs, alone and in chains. Where the office
// has no such functions, their names are unknown and stay as they are.
#include "tests/calc/CalcReads.h"

namespace quorin::host::calc {
namespace {

using testing::HasSubstr;

class NewerFunctions : public CalcReads {
 protected:
  static bool has(const std::string& function) {
    const auto all = hands->functions("Edges.xlsx");
    return std::any_of(all.begin(), all.end(),
                       [&](const std::string& name) { return name.ends_with("." + function); });
  }
  static std::string value(const std::string& json) {
    return R"({"ok":true,"value":)" + json + "}";
  }
  static constexpr const char* unknown = R"({"kind":"excelError","message":"#NAME?","ok":false})";
};

TEST_F(NewerFunctions, GiveWhatExcelGives) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"LET(rate,2,net,rate*B1,RATE+net)", "27"},
      {"LET(a,LET(b,1,b+1),LET(c,a*10,c+a))*2", "44"},  // one in another, which Calc does not know
      {"LET(Rate,3,Rate)+Rate", "15.5"},                // the workbook has a name like that
      {"IF(LET(b,2,b)=2,LET(d,3,d),0)", "3"},
      {"LET(n,E1,IFERROR(1/(n-1),n))", "1"},
      {"XLOOKUP(12.5,B1:B2,A1:A2)", "\"Item\""},
      {"XLOOKUP(13,B1:B2,A1:A2,\"none\")", "\"none\""},
      {"XLOOKUP(3,E1:E3,A1:A3)", "\"last\""},
      {"XMATCH(3,E1:E3)", "3"},
      {"SEQUENCE(2,3)", "[[1,2,3],[4,5,6]]"},
      {"SEQUENCE(E1+1)", "[[1],[2]]"},
      {"LET(n,E3,SEQUENCE(1,n))", "[[1,2,3]]"},
      {"SUM(SEQUENCE(RANDBETWEEN(3,3)))", "6"},
      {"SORT(FILTER({5;1;4},{1;0;1}))", "[[4],[5]]"},
      {"UNIQUE({1;2;1})", "[[1],[2]]"},
      {"SORTBY({1;2;3},{3;1;2})", "[[2],[3],[1]]"},
      {"RANDARRAY(1,2,7,7,TRUE)", "[[7,7]]"}};
  for (const auto& [expression, json] : cases) {
    const std::string function = expression.substr(0, expression.find('('));
    const bool isThere = has(function == "IF" || function == "SUM" ? "LET" : function);
    EXPECT_EQ(evaluate(expression), isThere ? value(json) : unknown) << expression;
  }
}

// Excel's own number of #CALC! is beyond those that an expression can tell.
TEST_F(NewerFunctions, SayThatNothingIsLeft) {
  const std::string nothing = "FILTER({1;2},{0;0})";
  const bool isThere = has("FILTER");
  EXPECT_EQ(evaluate(nothing),
            isThere ? R"({"kind":"excelError","message":"#UNKNOWN!","ok":false})" : unknown);
  EXPECT_EQ(deep({nothing}), value(isThere ? "\"#CALC!\"" : "\"#NAME?\""));
}

TEST_F(NewerFunctions, WorkInChains) {
  if (!has("LET")) {
    EXPECT_EQ(deep({"LET(a,2,a*3)"}), value("\"#NAME?\""));
    return;
  }
  EXPECT_EQ(deep({"LET(a,2,LET(b,a*3,b))", "A1+1"}), value("7"));
  EXPECT_EQ(deep({"3", "SUM(SEQUENCE(A1,1,A1))"}), value("12"));
  EXPECT_EQ(
      deep({"SEQUENCE(3)"}),
      R"({"kind":"refused","message":"deep-eval: an intermediate result spilled","ok":false})");
}

// Calc 25.2 ends at an array that is far too large, wherever its size comes from.
TEST_F(NewerFunctions, AreNotAskedForArraysThatWouldEndTheOffice) {
  const bool isThere = has("SEQUENCE");
  for (const char* endless :
       {"SUM(SEQUENCE(1000000,1000000))", "ROWS(RANDARRAY(1E6,1E6))", "SUM(SEQUENCE(1E6*E1,1E6))",
        "LET(n,1E6*E1,ROWS(SEQUENCE(n,n)))", "SUM(SEQUENCE(9000)*SEQUENCE(1,9000))"}) {
    const std::string reply = evaluate(endless);
    EXPECT_THAT(reply, isThere ? HasSubstr("The expression makes arrays of too many cells")
                               : HasSubstr("#NAME?"))
        << endless;
  }
  EXPECT_THAT(deep({"1E6", "ROWS(SEQUENCE(A1,A1))"}),
              isThere ? HasSubstr("too many cells") : HasSubstr("#NAME?"));
  EXPECT_THAT(evaluate("SUM(MUNIT(B1*800))"), HasSubstr("too many cells"));  // no new one
  EXPECT_EQ(evaluate("1+1"), value("2"));
}

}  // namespace
}  // namespace quorin::host::calc
