// Ranges, formulas, the map and deep evaluation, all the way.
#include "tests/kit/road/RoadFixture.h"

namespace quorin {
namespace {

using testing::HasSubstr;

class ReadsRoad : public RoadFixture {
 protected:
  ReadsRoad() { memory_->open(fakes::knownWorkbook()); }

  static JSONValue plan(std::vector<std::string> entries) { return texts(entries); }
};

TEST_F(ReadsRoad, ReadsAGridWithItsErrors) {
  EXPECT_EQ(ask("readRange", {"A2:C4"}),
            R"({"cols":3,"rows":3,"values":[["Bolt",1.5,3],["Nut",2,4],["",3.5,"#DIV/0!"]]})");
}

TEST_F(ReadsRoad, PutsTheErrorRowsOfAColumnBack) {
  excel_->quirks.dropsErrorRows = true;
  EXPECT_EQ(ask("readRange", {"C2:C4"}), R"({"cols":1,"rows":3,"values":[[3],[4],["#DIV/0!"]]})");
  EXPECT_EQ(ask("readRange", {"C4"}), R"({"cols":1,"rows":1,"values":[["#DIV/0!"]]})");
  EXPECT_EQ(ask("readFormulas", {"C2:C4", "a1"}),
            R"({"cols":1,"formulas":[["=B2*2"],["=B3*2"],["=1/0"]],"rows":3,)"
            R"("values":[[3],[4],["#DIV/0!"]]})");
}

TEST_F(ReadsRoad, PutsErrorRowsBackOnlyWhereItIsKnownWhichTheyAre) {
  excel_->quirks.dropsErrorRows = true;
  const host::SheetRef data{"Known.xlsx", "Data"};
  const host::CellError error{"#N/A"};
  memory_->setCell(data, {"H1", error});
  memory_->setCell(data, {"H2", error});
  memory_->setCell(data, {"H3", "#N/A"});
  memory_->setCell(data, {"H4", 4.0});
  const auto column = [](int rows, const std::string& values) {
    return R"({"cols":1,"rows":)" + std::to_string(rows) + R"(,"values":)" + values + "}";
  };
  const auto unreadable = [](const std::string& address) {
    return R"(failed {"kind":"transport","message":"range values unreadable for ')" + address +
           "'\"}";
  };
  EXPECT_EQ(ask("readRange", {"C3:C4"}), column(2, R"([[4],["#DIV/0!"]])"));    // one is left
  EXPECT_EQ(ask("readRange", {"H1:H2"}), column(2, R"([["#N/A"],["#N/A"]])"));  // none is
  EXPECT_EQ(ask("readRange", {"H3:H4"}), column(2, R"([["#N/A"],[4]])"));
  EXPECT_EQ(ask("readRange", {"H2:H4"}), unreadable("H2:H4"));  // text that looks like an error
  EXPECT_EQ(ask("readFormulas", {"H2:H4", "a1"}), unreadable("H2:H4"));
  EXPECT_THAT(ask("readRange", {"C2:C5001"}), HasSubstr(R"("values":[[3],[4],["#DIV/0!"],[""])"));
  EXPECT_EQ(ask("readRange", {"C2:C5002"}), unreadable("C2:C5002"));  // too many for the texts
}

TEST_F(ReadsRoad, RefusesAnErrorInTheFirstOfSeveralColumns) {
  excel_->quirks.dropsErrorRows = true;
  excel_->quirks.diesOfFirstColumnErrors = true;
  excel_->quirks.writesFormulasAsText = true;
  EXPECT_THAT(ask("readRange", {"C2:D4"}),
              HasSubstr("range has an error in its first column - Excel cannot read it as a grid"));
  memory_->setCell({"Known.xlsx", "Data"}, {"D4", 12.5});
  EXPECT_EQ(ask("readFormulas", {"C4:E6", "a1"}),
            R"({"cols":3,"formulas":[["=1/0","",""],["","",""],["","",""]],"rows":3,)"
            R"("values":[["",12.5,""],["","",""],["","",true]]})");
}

TEST_F(ReadsRoad, RefusesUnionsWithTheirNumbers) {
  EXPECT_THAT(
      ask("readRange", {"A1:B1,A3:B3"}),
      HasSubstr("multi-area 'A1:B1,A3:B3': 4 cells in a 1\u00d72 frame - Excel returns only "
                "the first area"));
  EXPECT_THAT(ask("readFormulas", {"A1:B1,A3:B3", "a1", true}), HasSubstr("multi-area"));
}

TEST_F(ReadsRoad, Reads20000CellsAndNoMore) {
  EXPECT_THAT(ask("readRange", {"A1:B10000"}), HasSubstr("\"rows\":10000"));
  EXPECT_EQ(ask("readRange", {"A1:A20001"}), R"({"cols":1,"rows":20001,"tooBig":true})");
  EXPECT_EQ(ask("readRange", {"A:XFD"}), R"({"cols":16384,"rows":1048576,"tooBig":true})");
  EXPECT_THAT(ask("readFormulas", {"A1:A20001", "a1", true}),
              HasSubstr("readFormulas over 20000 cells - chunk the read"));
}

TEST_F(ReadsRoad, HasErrorTextsUpTo5000Cells) {
  EXPECT_THAT(ask("readRange", {"B4:C2500"}), HasSubstr("#DIV/0!"));
  EXPECT_THAT(ask("readRange", {"B4:C2504"}), testing::Not(HasSubstr("#DIV/0!")));
}

TEST_F(ReadsRoad, ReadsFormulasAloneInEitherStyle) {
  EXPECT_EQ(ask("readFormulas", {"B2:C3", "a1", true}),
            R"({"cols":2,"formulas":[["","=B2*2"],["","=B3*2"]],"rows":2,"values":[]})");
  EXPECT_EQ(ask("readFormulas", {"C2:C3", "r1c1", true}),
            R"({"cols":1,"formulas":[["=RC[-1]*2"],["=RC[-1]*2"]],"rows":2,"values":[]})");
}

TEST_F(ReadsRoad, BindsSheetsAndNames) {
  EXPECT_EQ(ask("readRange", {"'It''s a test'!A1"}), R"({"cols":1,"rows":1,"values":[[2.5]]})");
  EXPECT_EQ(ask("readRange", {"Prices"}), R"({"cols":1,"rows":2,"values":[[1.5],[2]]})");
  EXPECT_THAT(ask("readRange", {"Nowhere!A1"}), HasSubstr("sheet not found: Nowhere"));
  EXPECT_THAT(ask("readRange", {"[Other.xlsx]Data!A1"}), HasSubstr("workbook not open"));
  EXPECT_THAT(ask("readRange", {"no such place"}), testing::StartsWith("failed"));
}

TEST_F(ReadsRoad, RefusesWhatIsNoAddressByItsText) {
  for (const std::string address : {"", " ", "junk", "A0", "XFE1", "A1048577", "#REF!",
                                    "A1:", "Data!", "R1C1", "=A1", "A1 B1", "A1#", "Factor"}) {
    const std::string reply =
        R"(failed {"kind":"transport","message":"Microsoft Excel got an error: Can't get range \")" +
        address + R"(\"."})";
    EXPECT_EQ(ask("readRange", {address}), reply);
    EXPECT_EQ(ask("readFormulas", {address, "a1", true}), reply);
  }
}

TEST_F(ReadsRoad, MapsTheWorkbook) {
  EXPECT_EQ(ask("workbookMap"),
            R"({"book":"Known.xlsx","names":[{"name":"Factor","refersTo":"=0.2"},)"
            R"({"name":"Prices","refersTo":"=Data!$B$2:$B$3"},)"
            R"({"name":"Spot","refersTo":"=Data!$A$1"},)"
            R"({"name":"'It''s a test'!Spot","refersTo":"='It''s a test'!$B$2"}],)"
            R"("sheets":[{"name":"Data","usedRange":"$A$1:$E$10"},)"
            R"({"name":"It's a test","usedRange":"$A$1:$B$2"},)"
            R"({"name":"Blank","usedRange":"$A$1"}],"sheetsTruncated":false})");
}

TEST_F(ReadsRoad, MapsFiftySheets) {
  fakes::WorkbookDescription book{.name = "Many.xlsx", .sheets = {}};
  for (int i = 1; i <= 51; ++i) book.sheets.push_back({"S" + std::to_string(i), {{"A1", 1.0}}});
  memory_->open(book);
  const std::string map = ask("workbookMap");
  EXPECT_THAT(map, HasSubstr(R"({"name":"S50","usedRange":"$A$1"},)"
                             R"({"name":"S51","usedRange":null}],"sheetsTruncated":true})"));
  EXPECT_THAT(map, HasSubstr(R"("names":[])"));
  book.sheets.pop_back();
  book.name = "Fifty.xlsx";
  memory_->open(book);
  EXPECT_THAT(ask("workbookMap"),
              HasSubstr(R"({"name":"S50","usedRange":"$A$1"}],"sheetsTruncated":false})"));
}

TEST_F(ReadsRoad, MapsSheetsWhoseUsedRangeIsNotTold) {
  memory_->open({.name = "Shy.xlsx", .sheets = {{"One", {}}, {"Two", {{"A1", 1.0}}}}});
  memory_->script.atEvery("usedRange", {.number = -50, .message = "Parameter error."});
  EXPECT_EQ(ask("workbookMap"),
            R"({"book":"Shy.xlsx","names":[],"sheets":[{"name":"One","usedRange":null},)"
            R"({"name":"Two","usedRange":null}],"sheetsTruncated":false})");
}

TEST_F(ReadsRoad, LeavesExcelsOwnNamesOut) {
  memory_->open({.name = "Names.xlsx",
                 .sheets = {{"Data", {{"A1", 1.0}}}},
                 .names = {{"_xlfn.LET", "=#NAME?"},
                           {"Rate", "=Data!$A$1"},
                           {"_xlnm.Print_Area", "=Data!$A$1"},
                           {"_xlpm.x", "=#NAME?"},
                           {"Area", "=Data!$A$1"}}});
  EXPECT_THAT(ask("workbookMap"), HasSubstr(R"("names":[{"name":"Area","refersTo":"=Data!$A$1"},)"
                                            R"({"name":"Rate","refersTo":"=Data!$A$1"}],)"));
}

TEST_F(ReadsRoad, FindsSheetsWhateverTheirNamesAre) {
  const std::string longest = "Ärger & Übermut (2024) – 31 ch.!";
  memory_->open({.name = "Sheets.xlsx",
                 .sheets = {{"Hidden", {{"A1", "unseen"}}, true},
                            {"a!b (c)", {{"A1", "marked"}}},
                            {longest, {{"A1", "long"}}}}});
  EXPECT_EQ(ask("readRange", {"Hidden!A1"}), R"({"cols":1,"rows":1,"values":[["unseen"]]})");
  EXPECT_EQ(ask("readRange", {"'a!b (c)'!A1"}), R"({"cols":1,"rows":1,"values":[["marked"]]})");
  EXPECT_EQ(ask("readRange", {"'" + longest + "'!A1"}),
            R"({"cols":1,"rows":1,"values":[["long"]]})");
  EXPECT_EQ(ask("readRange", {"'ärger & übermut (2024) – 31 CH.!'!A1"}),
            R"({"cols":1,"rows":1,"values":[["long"]]})");
}

TEST_F(ReadsRoad, NoticesThatAWorkbookWasClosed) {
  memory_->open({.name = "Second.xlsx", .sheets = {{"Only", {{"A1", "second"}}}}});
  EXPECT_EQ(ask("readRange", {"[Second.xlsx]Only!A1"}),
            R"({"cols":1,"rows":1,"values":[["second"]]})");
  memory_->close("Second.xlsx");
  EXPECT_THAT(ask("readRange", {"[Second.xlsx]Only!A1"}),
              HasSubstr("workbook not open: Second.xlsx"));
  EXPECT_THAT(ask("readRange", {"Only!A1"}), HasSubstr("sheet not found: Only"));
}

TEST_F(ReadsRoad, ReadsAWorkbookWithNothingInIt) {
  memory_->open({.name = "Empty.xlsx", .sheets = {{"Sheet1", {}}}});
  EXPECT_EQ(ask("workbookMap"),
            R"({"book":"Empty.xlsx","names":[],)"
            R"("sheets":[{"name":"Sheet1","usedRange":"$A$1"}],"sheetsTruncated":false})");
  EXPECT_EQ(ask("readRange", {"A1:B1"}), R"({"cols":2,"rows":1,"values":[["",""]]})");
  excel_->quirks.losesBlanks = true;
  EXPECT_EQ(ask("readRange", {"A1:B2"}),
            R"({"cols":2,"rows":2,"values":[[null,null],[null,null]]})");
  EXPECT_EQ(ask("evaluate", {"A1&\"!\""}), R"({"ok":true,"value":"!"})");
}

TEST_F(ReadsRoad, HasNothingToReadWithoutAWorkbook) {
  memory_->close("Known.xlsx");
  const auto missing = [](const std::string& what) {
    return R"({"kind":"transport","message":"Microsoft Excel got an error: Can't get )" + what +
           ".\"";
  };
  EXPECT_EQ(ask("readRange", {"A1"}), "failed " + missing(R"(range \"A1\")") + "}");
  EXPECT_EQ(ask("readFormulas", {"A1", "a1"}), "failed " + missing(R"(range \"A1\")") + "}");
  EXPECT_EQ(ask("readRange", {"Data!A1"}), "failed " + missing("workbook missing value") + "}");
  EXPECT_EQ(ask("workbookMap"), "failed " + missing("workbook missing value") + "}");
  EXPECT_EQ(ask("evaluate", {"1+1"}),
            missing(R"(application \"Microsoft Excel\")") + R"(,"ok":false})");
  EXPECT_EQ(ask("deepEval", {plan({"1+1"})}), R"({"ok":true,"value":2})");
}

TEST_F(ReadsRoad, EvaluatesOrSaysWhyNot) {
  EXPECT_EQ(ask("evaluate", {"NOSUCH(1)"}),
            R"({"kind":"excelError","message":"#NAME?","ok":false})");
  EXPECT_THAT(ask("evaluate", {"1+"}), testing::StartsWith(R"({"kind":"excelError",)"));
  excel_->quirks.losesLongText = true;
  EXPECT_EQ(ask("evaluate", {"B2" + std::string(251, ' ') + "+1"}), R"({"ok":true,"value":2.5})");
  EXPECT_EQ(ask("evaluate", {"B2" + std::string(252, ' ') + "+1"}),
            R"({"kind":"excelError","message":"Excel gave no value","ok":false})");
}

TEST_F(ReadsRoad, EvaluatesAChain) {
  EXPECT_EQ(ask("deepEval", {plan({"1+2"})}), R"({"ok":true,"value":3})");
  EXPECT_EQ(ask("deepEval", {plan({"1+2", "A1*2", "A2+A1"})}), R"({"ok":true,"value":9})");
  EXPECT_EQ(ask("deepEval", {plan({"1/0"})}), R"({"ok":true,"value":"#DIV/0!"})");
  EXPECT_EQ(memory_->workbooks(), std::vector<std::string>{"Known.xlsx"});
  EXPECT_EQ(memory_->activeWorkbook(), "Known.xlsx");
}

TEST_F(ReadsRoad, RefusesBadPlansWithoutAskingExcel) {
  const auto refused = [](const std::string& message) {
    return R"({"kind":"refused","message":")" + message + R"(","ok":false})";
  };
  excel_->forget();
  EXPECT_EQ(ask("deepEval", {plan({})}), refused("deep-eval plan empty"));
  EXPECT_EQ(ask("deepEval", {plan(std::vector<std::string>(41, "1"))}),
            refused("deep-eval exceeds 40 entries"));
  EXPECT_EQ(ask("deepEval", {plan({"1", std::string(255, '1')})}),
            refused("deep-eval entry exceeds 255 characters"));
  EXPECT_TRUE(excel_->events().empty());
  EXPECT_EQ(ask("deepEval", {plan({"1" + std::string(251, ' ') + "+1"})}),
            R"({"ok":true,"value":2})");
  EXPECT_EQ(ask("deepEval", {plan(std::vector<std::string>(40, "7"))}), R"({"ok":true,"value":7})");
}

TEST_F(ReadsRoad, TellsAChainThatTakesTooLongApart) {
  memory_->script.atEvery("setFormula", {.number = -1712, .message = "AppleEvent timed out."});
  EXPECT_THAT(ask("deepEval", {plan({"1+2"})}), testing::StartsWith(R"({"kind":"timeout",)"));
  EXPECT_EQ(memory_->workbooks(), std::vector<std::string>{"Known.xlsx"});
  EXPECT_EQ(memory_->activeWorkbook(), "Known.xlsx");
}

TEST_F(ReadsRoad, RefusesWhatSpills) {
  EXPECT_EQ(
      ask("deepEval", {plan({"{1,2,3}"})}),
      R"({"kind":"refused","message":"deep-eval: an intermediate result spilled","ok":false})");
  EXPECT_EQ(memory_->workbooks(), std::vector<std::string>{"Known.xlsx"});
}

TEST_F(ReadsRoad, RefusesWhatExcelCuts) {
  excel_->quirks.cutsLongFormulas = true;
  std::string sum = "1";
  while (sum.size() < 253) sum += "+1";
  EXPECT_THAT(ask("deepEval", {plan({sum})}), HasSubstr("\"ok\":true"));
  EXPECT_THAT(ask("deepEval", {plan({sum + "+1"})}),
              HasSubstr("deep-eval entry exceeds 255 characters"));
  excel_->quirks.longestText = 100;
  EXPECT_EQ(ask("deepEval", {plan({"1", sum})}),
            R"({"kind":"refused","message":"deep-eval: Excel truncated an entry","ok":false})");
  EXPECT_THAT(log_.lines(), testing::Contains("ERROR deepEval failed code=-9004 n=2"));
  EXPECT_EQ(memory_->workbooks(), std::vector<std::string>{"Known.xlsx"});
}

}  // namespace
}  // namespace quorin
