// Evaluations on Calc, by themselves and in chains, all the way, where they are at their edges.
#include <future>
#include <signal.h>

#include "tests/calc/CalcReads.h"
#include "tests/calc/SheetHands.h"
#include "tests/fakes/StoppedProcess.h"

namespace quorin::host::calc {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

TEST_F(CalcReads, EvaluatesWholeRowsAndColumnsOrSaysThatTheyAreTooBig) {
  EXPECT_EQ(evaluate("SUM(B:B)"), R"({"ok":true,"value":37.5})");
  EXPECT_EQ(evaluate("COUNTA(1:1)+COUNTA(Hidden!A:XFD)"), R"({"ok":true,"value":6})");
  for (const char* reference : {"A:A", "2:3", "A:XFD", "A1:B1,A3:B3", "(A1:B1,A3:B3)"}) {
    EXPECT_EQ(
        evaluate(reference),
        R"({"kind":"transport","message":"evaluate result could not be marshalled","ok":false})");
  }
  EXPECT_EQ(evaluate("SUM((A1:B1,A3:B3))"), R"({"ok":true,"value":12.5})");
  EXPECT_EQ(evaluate("B:B*2"), R"({"kind":"transport","message":"Microsoft Excel got an error: )"
                               R"(The result has too many cells","ok":false})");
  const std::string spilled =
      R"({"kind":"refused","message":"deep-eval: an intermediate result spilled","ok":false})";
  EXPECT_EQ(deep({"[Edges.xlsx]Data!B:B"}), spilled);
  EXPECT_EQ(deep({"[Edges.xlsx]Data!B:B*2"}), spilled);
  EXPECT_EQ(deep({"[Edges.xlsx]Data!1:1"}), spilled);
  EXPECT_EQ(deep({"1", "ROW(A:A)"}), R"({"ok":true,"value":"#VALUE!"})");      // one row too long
  EXPECT_EQ(deep({"[Edges.xlsx]Data!B:B", "2"}), R"({"ok":true,"value":2})");  // no room for it
  EXPECT_EQ(deep({"SUM([Edges.xlsx]Data!B:B)", "A1*2"}), R"({"ok":true,"value":75})");
}

TEST_F(CalcReads, EvaluatesOnSheetsWhateverTheirNamesAre) {
  const std::vector<std::pair<std::string, std::string>> sheets{
      {"It''s a \"q\"", "quoted"}, {"a!b (c)", "marked"}, {longName, "long"}, {"Hidden", "unseen"}};
  for (const auto& [name, content] : sheets) {
    const std::string value = R"({"ok":true,"value":")" + content + R"(!"})";
    EXPECT_EQ(evaluate("'" + name + "'!A1&\"!\""), value);
    EXPECT_EQ(evaluate("'[Edges.xlsx]" + name + "'!A1&\"!\""), value);
    EXPECT_EQ(deep({"'[Edges.xlsx]" + name + "'!A1", "A1&\"!\""}), value);
  }
  const std::string other = "'ÄRGER & ÜBERmut (2024) – 31 CH.!'!A2",
                    two = R"({"ok":true,"value":2})";
  EXPECT_EQ(ask("readRange", {other}), grid(1, 1, "[[2]]"));
  EXPECT_EQ(evaluate(other + "+0"), two);
  EXPECT_EQ(evaluate("'[EDGES.xlsx]" + other.substr(1) + "+0"), two);
  EXPECT_EQ(evaluate("'[EDGES.xlsx]" + other.substr(1)), two);
  EXPECT_EQ(evaluate("[EDGES.xlsx]data!B1*2+CELL(\"width\",A1)*0"), R"({"ok":true,"value":25})");
  EXPECT_EQ(deep({"'[edges.XLSX]" + other.substr(1)}), two);
}

// One after the other, in one question and in several: what a look leaves behind would show.
TEST_F(CalcReads, TellsHowCellsLook) {
  SheetHands sheets(road->office().open(), "Edges.xlsx");
  sheets.setColumnWidth("Blank", 2, 12'000);
  sheets.showColumn("Blank", 3, false);
  const std::string width = R"(CELL("width",Blank!)";
  EXPECT_EQ(evaluate("(" + width + "B1)>" + width + "A1))&" + width + "C1)&(" + width + "A1)>0)"),
            R"({"ok":true,"value":"TRUE0TRUE"})");
  EXPECT_EQ(evaluate(R"(CELL("prefix",A1)&"|"&CELL("prefix",B1)&"|"&CELL("protect",A1))"),
            R"({"ok":true,"value":"'||1"})");
  EXPECT_EQ(evaluate("(" + width + "D1)=" + width + "A1))&" + width + "C4)"),
            R"({"ok":true,"value":"TRUE0"})");
  EXPECT_EQ(evaluate(R"(CELL("prefix",Blank!C1)&"|"&CELL("color",B1))"),
            R"({"ok":true,"value":"|0"})");
}

TEST_F(CalcReads, EvaluatesOrSaysWhyNot) {
  const std::string misunderstood =
      R"({"kind":"excelError","message":"Microsoft Excel got an error: application \"Microsoft Excel\" )"
      R"(doesn't understand the evaluate message.","ok":false})";
  EXPECT_EQ(evaluate("{1,2;3,4}"), R"({"ok":true,"value":[[1,2],[3,4]]})");
  EXPECT_EQ(evaluate("1+"), misunderstood);
  EXPECT_EQ(evaluate("\"open"), misunderstood);
  EXPECT_EQ(evaluate("NoName*12"), R"({"kind":"excelError","message":"#NAME?","ok":false})");
  EXPECT_EQ(ask("evaluate", {"NOSUCH(1)", "asked"}),
            R"({"kind":"excelError","message":"#NAME?","ok":false})");
  for (const char* nowhere : {"Nowhere!A1", "[Gone.xlsx]Data!A1"}) {
    EXPECT_EQ(evaluate(nowhere), R"({"kind":"excelError","message":"#REF!","ok":false})");
  }
  EXPECT_EQ(
      evaluate("A1:A3"),
      R"({"kind":"transport","message":"evaluate result could not be marshalled","ok":false})");
  EXPECT_THAT(road->log(), Contains("ERROR evaluate failed code=-1708 len=9"));
}

TEST_F(CalcReads, NamesTheErrorOfCellsThatGoRoundInACircle) {
  open({.name = "Round.xlsx", .sheets = {{"Data", {{"C1", 1.0}}}}});
  hands->enter("Round.xlsx", "Data", "A1", "=B1");
  hands->enter("Round.xlsx", "Data", "B1", "=A1+C1");
  const std::string read = ask("readRange", {"A1:A2"}), value = evaluate("A1+C1");
  hands->close("Round.xlsx");
  EXPECT_EQ(read, grid(2, 1, R"([["#REF!"],[""]])"));
  EXPECT_EQ(value, R"({"kind":"excelError","message":"#REF!","ok":false})");
}

TEST_F(CalcReads, EvaluatesWhatIsLongerThanExcelTakes) {
  for (const std::size_t length : {255U, 256U}) {
    const std::string expression = "B1" + std::string(length - 4, ' ') + "+1";
    EXPECT_EQ(evaluate(expression), R"({"ok":true,"value":13.5})") << length;
  }
}

TEST_F(CalcReads, EvaluatesAChainOrSaysWhyNot) {
  const auto refused = [](const std::string& message) {
    return R"({"kind":"refused","message":"deep-eval)" + message + R"(","ok":false})";
  };
  EXPECT_EQ(deep({"1" + std::string(251, ' ') + "+1"}), R"({"ok":true,"value":2})");
  EXPECT_EQ(deep({std::string(255, '1')}), refused(" entry exceeds 255 characters"));
  EXPECT_EQ(deep({}), refused(" plan empty"));
  EXPECT_EQ(deep(std::vector<std::string>(41, "1")), refused(" exceeds 40 entries"));
  EXPECT_EQ(deep({"ROW(A1:A3)"}), refused(": an intermediate result spilled"));
  EXPECT_EQ(deep({"1", "{1,2}", "A1"}), refused(": an intermediate result spilled"));
  EXPECT_EQ(deep({"1+"}), R"({"ok":true,"value":"#NAME?"})");
  EXPECT_EQ(ask("deepEval", {Array{"NOSUCH(1)"}, "asked"}), R"({"ok":true,"value":"#NAME?"})");
  EXPECT_EQ(deep({"A2", "A1"}), R"({"ok":true,"value":"#REF!"})");  // goes round in a circle
  EXPECT_EQ(deep({"1", "A1/0"}), R"({"ok":true,"value":"#DIV/0!"})");
  EXPECT_EQ(deep({"NA()"}), R"({"ok":true,"value":"#N/A"})");
  EXPECT_THAT(road->log(), Contains("ERROR deepEval failed code=-9005 n=3"));
}

TEST_F(CalcReads, LeavesNoWorkbookOfItsOwnBehind) {
  road->use([](CalcSpreadsheet& calc) {
    calc.goTo({{"Edges.xlsx", longName}, parseA1("C60:D70").value()});
  });
  deep({"1"});
  const int documents = hands->documents();
  const std::string before = hands->stateOf("Edges.xlsx"), cell = ask("readCell"),
                    view = road->firstInView();
  for (const char* entry : {"A1+1", "ROW(A1:A3)", "ROW(A:A)", "1/0", "1+", "A1",
                            "[Second.xlsx]Data!A1", "CELL(\"width\",A1)"}) {
    deep({entry});
    evaluate(entry);
  }
  EXPECT_EQ(hands->documents(), documents);
  EXPECT_EQ(hands->stateOf("Edges.xlsx"), before);
  EXPECT_THAT(cell, HasSubstr(R"("selection":"$C$60:$D$70")"));
  EXPECT_EQ(ask("readCell"), cell);
  EXPECT_EQ(road->firstInView(), view);
  EXPECT_THAT(ask("workbookMap"), StartsWith(R"({"book":"Edges.xlsx",)"));
}

// A scratch workbook has no file either, and must not be taken for one of theirs.
TEST_F(CalcReads, EvaluatesInWorkbooksThatWereNeverSaved) {
  const std::string behind = hands->openBlank(), front = hands->openBlank();
  hands->enter(front, "Sheet1", "A1", "7");
  const std::string cell = "'[" + front + "]Sheet1'!A1";
  const int documents = hands->documents();
  const std::string map = ask("workbookMap"), read = ask("readRange", {"A1"});
  const std::vector<std::string> values{evaluate("A1*2"), evaluate(cell + "*2"),
                                        deep({cell, "A1*2"}),
                                        evaluate("'[" + behind + "]Sheet1'!A1+14"), deep({"14"})};
  const std::string last = ask("pollCell");
  const int documentsAfter = hands->documents();
  hands->close(behind);
  hands->close(front);
  EXPECT_EQ(map, R"({"book":")" + front +
                     R"(","names":[],"sheets":[{"name":"Sheet1","usedRange":"$A$1"}],)"
                     R"("sheetsTruncated":false})");
  EXPECT_EQ(read, grid(1, 1, "[[7]]"));
  EXPECT_THAT(values, testing::Each(R"({"ok":true,"value":14})"));
  EXPECT_EQ(last, R"({"addr":"$A$1","book":")" + front + R"(","sheet":"Sheet1"})");
  EXPECT_LE(documentsAfter, documents + 1);  // the one that an evaluation keeps
}

TEST_F(CalcReads, GivesAChainUpThatTakesTooLongAndCleansUpAfterIt) {
  deep({"1"});
  const int documents = hands->documents();
  ASSERT_TRUE(stopProcess(road->office().process()));
  int code = 0;
  try {
    road->thread().call("qx_deepeval", {JSONValue(Array{"1+2"})}, 0.3);
  } catch (const ExcelError& error) {
    code = error.code();
  }
  ASSERT_EQ(::kill(road->office().process(), SIGCONT), 0);
  EXPECT_EQ(code, ExcelError::timedOut);
  EXPECT_EQ(deep({"1+2"}), R"({"ok":true,"value":3})");  // after the one that went on
  EXPECT_EQ(hands->documents(), documents);
}

// A script that was given up, or that the office has failed, may not come to closing it.
TEST_F(CalcReads, LeavesNoScratchWorkbookThatAHandlerHasNotClosed) {
  deep({"1"});
  const int documents = hands->documents();
  road->use([](CalcSpreadsheet& calc) {
    calc.handlerBegins({});
    const std::string book = calc.makeWorkbook();
    EXPECT_THAT(calc.workbooks(), Contains(book));
    calc.handlerEnds();
    EXPECT_THAT(calc.workbooks(), ElementsAre("Second.xlsx", "Edges.xlsx"));
    EXPECT_EQ(calc.activeWorkbook(), "Edges.xlsx");
  });
  EXPECT_EQ(hands->documents(), documents);
}

// The last one: its office is gone afterwards.
TEST_F(CalcReads, SaysThatTheOfficeDiedUnderAChainAndFindsTheNextOne) {
  const pid_t office = road->office().process();
  ASSERT_TRUE(stopProcess(office));
  auto reply = std::async(std::launch::async, [] { return deep({"1+2", "A1*2"}); });
  EXPECT_EQ(reply.wait_for(300ms), std::future_status::timeout);
  ASSERT_EQ(::kill(office, SIGKILL), 0);
  EXPECT_THAT(reply.get(), StartsWith(R"({"kind":"transport","message":")"));
  EXPECT_THAT(road->log(), Contains("ERROR deepEval failed code=-609 n=2"));
  EXPECT_THAT(evaluate("1+2"), StartsWith(R"({"kind":"transport","message":")"));
  hands.reset();
  road->startOfficeAnew();
  open(edges());
  EXPECT_EQ(evaluate("B1*2"), R"({"ok":true,"value":25})");
  EXPECT_EQ(deep({"[Edges.xlsx]Data!B1", "A1*2"}), R"({"ok":true,"value":25})");
  EXPECT_EQ(ask("readRange", {"B1:B2"}), grid(2, 1, "[[12.5],[25]]"));
}

}  // namespace
}  // namespace quorin::host::calc
