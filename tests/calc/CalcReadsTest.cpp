// Ranges, formulas and the map on Calc, all the way, where they are at their edges.
#include "tests/calc/CalcReads.h"

namespace quorin::host::calc {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string firstColumn =
    failure("range has an error in its first column - Excel cannot read it as a grid");

TEST_F(CalcReads, ReadsAGridWithItsErrors) {
  EXPECT_EQ(ask("readRange", {"B1:C2"}), grid(2, 2, R"([[12.5,true],[25,"#DIV/0!"]])"));
  EXPECT_EQ(ask("readRange", {"E1:E3"}), grid(3, 1, R"([[1],["#DIV/0!"],[3]])"));
  EXPECT_EQ(ask("readRange", {"A1"}), grid(1, 1, R"([["Item"]])"));
  EXPECT_EQ(ask("readRange", {"A2"}), grid(1, 1, R"([["#N/A"]])"));
  EXPECT_EQ(ask("readRange", {"G1:G3"}), grid(3, 1, R"([["=no formula"],[""],[""]])"));
}

TEST_F(CalcReads, RefusesAnErrorInTheFirstOfSeveralColumns) {
  EXPECT_EQ(ask("readRange", {"A1:C2"}), firstColumn);
  EXPECT_EQ(ask("readRange", {"A2:B2"}), firstColumn);
  EXPECT_EQ(ask("readFormulas", {"A1:C2", "a1", false}),
            R"j({"cols":3,"formulas":[["","",""],["=NA()","=B1*2","=1/0"]],"rows":2,)j"
            R"("values":[["Item",12.5,true],["","",""]]})");
}

TEST_F(CalcReads, ReadsFormulasInEitherStyle) {
  EXPECT_EQ(ask("readFormulas", {"B1:C2", "a1", false}),
            R"({"cols":2,"formulas":[["",""],["=B1*2","=1/0"]],"rows":2,)"
            R"("values":[[12.5,true],[25,"#DIV/0!"]]})");
  EXPECT_EQ(ask("readFormulas", {"A1:C2", "r1c1", true}),
            R"j({"cols":3,"formulas":[["","",""],["=NA()","=R[-1]C*2","=1/0"]],"rows":2,)j"
            R"("values":[]})");
  EXPECT_EQ(ask("readFormulas", {"A2", "a1", false}),
            R"j({"cols":1,"formulas":[["=NA()"]],"rows":1,"values":[["#N/A"]]})j");
}

TEST_F(CalcReads, Reads20000CellsAndNoMore) {
  EXPECT_THAT(ask("readRange", {"A1:B10000"}), HasSubstr("first column"));
  EXPECT_THAT(ask("readRange", {"B1:C10000"}), StartsWith(R"({"cols":2,"rows":10000,)"));
  EXPECT_EQ(ask("readRange", {"A1:A20001"}), R"({"cols":1,"rows":20001,"tooBig":true})");
  EXPECT_THAT(ask("readFormulas", {"A1:A20000", "a1", true}), HasSubstr(R"("rows":20000)"));
  EXPECT_EQ(ask("readFormulas", {"A1:A20001", "a1", true}),
            failure("readFormulas over 20000 cells - chunk the read"));
}

TEST_F(CalcReads, HasErrorTextsUpTo5000Cells) {
  EXPECT_THAT(ask("readRange", {"E1:E5000"}), HasSubstr(R"([[1],["#DIV/0!"],[3])"));
  EXPECT_THAT(ask("readRange", {"E1:E5001"}), HasSubstr("[[1],[null],[3]"));
}

TEST_F(CalcReads, FindsWholeRowsAndColumnsTooBigAtOnce) {
  EXPECT_EQ(ask("readRange", {"A:A"}), R"({"cols":1,"rows":1048576,"tooBig":true})");
  EXPECT_EQ(ask("readRange", {"2:3"}), R"({"cols":16384,"rows":2,"tooBig":true})");
  EXPECT_EQ(ask("readRange", {"A:XFD"}), R"({"cols":16384,"rows":1048576,"tooBig":true})");
  EXPECT_THAT(ask("readRange", {"5:5"}), StartsWith(R"({"cols":16384,"rows":1,"values":[[)"));
  for (const char* whole : {"A:A", "Hidden!2:3", "A:XFD"}) {
    EXPECT_EQ(ask("readFormulas", {whole, "r1c1", false}),
              failure("readFormulas over 20000 cells - chunk the read"));
  }
}

TEST_F(CalcReads, RefusesUnionsWithTheirNumbers) {
  const std::string message = failure(
      "multi-area 'A1:B1,A3:B3': 4 cells in a 1\u00d72 frame - Excel returns only the first area");
  EXPECT_EQ(ask("readRange", {"A1:B1,A3:B3"}), message);
  EXPECT_EQ(ask("readFormulas", {"A1:B1,A3:B3", "a1", true}), message);
}

TEST_F(CalcReads, RefusesWhatIsNoAddressByItsText) {
  for (const std::string address : {"", " ", "junk", "A0", "XFE1", "A1048577", "#REF!",
                                    "A1:", "Data!", "R1C1", "=A1", "A1 B1", "A1#", "Local"}) {
    const std::string reply =
        failure(R"(Microsoft Excel got an error: Can't get range \")" + address + R"(\".)");
    EXPECT_EQ(ask("readRange", {address}), reply);
    EXPECT_EQ(ask("readFormulas", {address, "a1", true}), reply);
  }
}

TEST_F(CalcReads, FindsSheetsWhateverTheirNamesAre) {
  EXPECT_EQ(ask("readRange", {"Hidden!A1"}), grid(1, 1, R"([["unseen"]])"));
  EXPECT_EQ(ask("readRange", {"'It''s a \"q\"'!A1"}), grid(1, 1, R"([["quoted"]])"));
  EXPECT_EQ(ask("readRange", {"'a!b (c)'!A1"}), grid(1, 1, R"([["marked"]])"));
  EXPECT_EQ(ask("readRange", {"'" + longName + "'!A1:A2"}), grid(2, 1, R"([["long"],[2]])"));
  EXPECT_EQ(ask("readFormulas", {"'" + longName + "'!A2", "a1", true}),
            R"({"cols":1,"formulas":[["=Data!B1"]],"rows":1,"values":[]})");
  EXPECT_EQ(ask("readRange", {"Nowhere!A1"}), failure("sheet not found: Nowhere"));
}

TEST_F(CalcReads, TakesNoPartOfASheetsNameForAnythingElse) {
  const std::vector<std::string> names{"a;b", "x#$y", "1.5", "$A$1", "a'b", "A1", "R1C1"};
  fakes::WorkbookDescription book{.name = "Signs.xlsx", .sheets = {}};
  for (const std::string& name : names) book.sheets.push_back({name, {{"B2", "in " + name}}});
  open(book);
  std::vector<std::string> read, expected;
  for (const std::string& name : names) {
    std::string quoted = "'" + name + "'!B2:B3";
    if (name == "a'b") quoted = "'a''b'!B2:B3";
    read.push_back(ask("readRange", {quoted}));
    expected.push_back(grid(2, 1, "[[\"in " + name + "\"],[\"\"]]"));
  }
  hands->close("Signs.xlsx");
  EXPECT_EQ(read, expected);
}

TEST_F(CalcReads, NoticesThatSheetsExchangedTheirNames) {
  open({.name = "Exchange.xlsx", .sheets = {{"One", {{"A1", 10.0}}}, {"Two", {{"A1", 20.0}}}}});
  std::vector<std::string> told{evaluate("One!A1*2"), ask("readRange", {"One!A1"})};
  hands->renameSheet("Exchange.xlsx", "One", "Three");
  hands->renameSheet("Exchange.xlsx", "Two", "One");
  told.push_back(ask("readRange", {"Two!A1"}));
  told.push_back(ask("readRange", {"One!A1"}));
  told.push_back(evaluate("One!A1*2"));
  told.push_back(evaluate("Two!A1*2"));
  hands->close("Exchange.xlsx");
  EXPECT_EQ(told,
            (std::vector<std::string>{R"({"ok":true,"value":20})", grid(1, 1, "[[10]]"),
                                      failure("sheet not found: Two"), grid(1, 1, "[[20]]"),
                                      R"({"ok":true,"value":40})",
                                      R"({"kind":"excelError","message":"#REF!","ok":false})"}));
}

TEST_F(CalcReads, TellsTruthFromNumbersNearAndFar) {
  open({.name = "Truth.xlsx",
        .sheets = {{"Data",
                    {{"A1", "head"},
                     {"B2", true},
                     {"C2", 1.0},
                     {"B3", 0.0},
                     {"C3", false},
                     {"B2000", 1.0},
                     {"C2000", CellError{"#N/A"}, "=NA()"}}}}});
  const std::string near = ask("readRange", {"A1:C3"}), one = ask("readRange", {"B2"}),
                    far = ask("readFormulas", {"B3:C2000", "a1", false});
  hands->close("Truth.xlsx");
  EXPECT_EQ(near, grid(3, 3, R"([["head","",""],["",true,1],["",0,false]])"));
  EXPECT_EQ(one, grid(1, 1, "[[true]]"));
  EXPECT_THAT(far, HasSubstr(R"("values":[[0,false],["",""])"));
  EXPECT_THAT(far, testing::EndsWith(R"(["",""],[1,"#N/A"]]})"));
}

TEST_F(CalcReads, ReadsHiddenSheetsWithoutShowingThem) {
  const std::string before = hands->stateOf("Edges.xlsx");
  EXPECT_EQ(ask("readRange", {"Hidden!A1"}), grid(1, 1, R"([["unseen"]])"));
  EXPECT_EQ(evaluate("Hidden!A1&\"!\""), R"({"ok":true,"value":"unseen!"})");
  EXPECT_FALSE(hands->showsSheet("Edges.xlsx", "Hidden"));
  EXPECT_EQ(hands->stateOf("Edges.xlsx"), before);
}

// All that reading a workbook whole asks for, as the page asks it.
TEST_F(CalcReads, ReadsAWholeWorkbookWithoutATrace) {
  hands->enter("Edges.xlsx", "Blank", "D4", "entered");
  hands->undo("Edges.xlsx");
  road->use([](CalcSpreadsheet& calc) {
    calc.goTo({{"Edges.xlsx", longName}, parseA1("C60:D70").value()});
  });
  evaluate("1+1");  // the hidden workbook of evaluations stays open
  for (const bool modified : {false, true}) {
    hands->setModified("Edges.xlsx", modified);
    const std::string before = hands->stateOf("Edges.xlsx"),
                      content = hands->contentOf("Edges.xlsx"), cell = ask("readCell"),
                      view = road->firstInView();
    const int documents = hands->documents();
    EXPECT_THAT(cell, HasSubstr(R"("selection":"$C$60:$D$70")"));
    EXPECT_THAT(ask("workbookMap"), StartsWith(R"({"book":"Edges.xlsx",)"));
    for (const std::string& sheet : hands->sheets("Edges.xlsx")) {
      std::string name = "'[Edges.xlsx]";
      for (const char each : sheet) name += each == '\'' ? "''" : std::string(1, each);
      name += "'!";
      EXPECT_THAT(ask("readFormulas", {name + "A1:G8", "r1c1", false}), HasSubstr(R"("rows":8)"));
      EXPECT_THAT(ask("readFormulas", {name + "A1:E1000", "r1c1", false}),
                  HasSubstr(R"("rows":1000)"));
      std::string counted = "COUNTA(" + name;
      counted += "A1:XFD524288)&\"|\"&COUNTA(" + name + "A524289:XFD1048576)";
      EXPECT_THAT(evaluate(counted), StartsWith(R"({"ok":true,"value":")")) << sheet;
    }
    evaluate(R"(CELL("address",Rate)&"|"&ROWS(Rate)&"|"&COLUMNS(Rate))");
    evaluate(R"(CELL("address",Nowhere[a])&"|"&ROWS(Nowhere[a])&"|"&COLUMNS(Nowhere[a]))");
    ask("pollCell");
    EXPECT_EQ(hands->stateOf("Edges.xlsx"), before);
    EXPECT_EQ(hands->contentOf("Edges.xlsx"), content);
    EXPECT_EQ(hands->documents(), documents);
    EXPECT_EQ(ask("readCell"), cell);
    EXPECT_EQ(road->firstInView(), view);
    EXPECT_FALSE(hands->showsSheet("Edges.xlsx", "Hidden"));
  }
  road->use([](CalcSpreadsheet& calc) {
    calc.goTo({{"Edges.xlsx", "Data"}, parseA1("A1").value()});
  });
  hands->setModified("Edges.xlsx", false);
}

TEST_F(CalcReads, ReadsProtectedSheets) {
  hands->protect("Edges.xlsx", "Data");
  const std::string before = hands->stateOf("Edges.xlsx");
  EXPECT_EQ(ask("readRange", {"B1:C2"}), grid(2, 2, R"([[12.5,true],[25,"#DIV/0!"]])"));
  EXPECT_EQ(evaluate("B1*3"), R"({"ok":true,"value":37.5})");
  EXPECT_EQ(deep({"[Edges.xlsx]Data!B1", "A1*3"}), R"({"ok":true,"value":37.5})");
  EXPECT_EQ(hands->stateOf("Edges.xlsx"), before);
  hands->unprotect("Edges.xlsx", "Data");
}

TEST_F(CalcReads, ReadsNamesAndOtherWorkbooks) {
  EXPECT_EQ(ask("readRange", {"Rate"}), grid(1, 1, "[[12.5]]"));
  EXPECT_EQ(ask("readRange", {"Blank!Local"}), grid(1, 1, R"([[""]])"));
  EXPECT_EQ(ask("readRange", {"[Second.xlsx]Data!A1"}), grid(1, 1, R"([["second"]])"));
  EXPECT_EQ(ask("readRange", {"'[Second.xlsx]Data'!A1"}), grid(1, 1, R"([["second"]])"));
  EXPECT_EQ(ask("readRange", {"[Gone.xlsx]Data!A1"}), failure("workbook not open: Gone.xlsx"));
}

TEST_F(CalcReads, ReadsBlankCellsAsEmptyTexts) {
  EXPECT_EQ(ask("readRange", {"Blank!A1"}), grid(1, 1, R"([[""]])"));
  EXPECT_EQ(ask("readRange", {"Blank!B2:C3"}), grid(2, 2, R"([["",""],["",""]])"));
  EXPECT_EQ(ask("readFormulas", {"Blank!A1:A2", "a1", false}),
            R"({"cols":1,"formulas":[[""],[""]],"rows":2,"values":[[""],[""]]})");
}

TEST_F(CalcReads, MapsSheetsOfEveryKindAndLeavesInternalNamesOut) {
  EXPECT_EQ(ask("workbookMap"),
            R"({"book":"Edges.xlsx","names":[{"name":"Rate","refersTo":"=Data!$B$1"},)"
            R"({"name":"Blank!Local","refersTo":"=Blank!$A$1"}],)"
            R"("sheets":[{"name":"Data","usedRange":"$A$1:$G$3"},)"
            R"({"name":"Blank","usedRange":"$A$1"},{"name":"Hidden","usedRange":"$A$1"},)"
            R"j({"name":"It's a \"q\"","usedRange":"$A$1"},{"name":"a!b (c)","usedRange":"$A$1"},)j"
            R"({"name":")" +
                longName + R"(","usedRange":"$A$1:$A$2"}],"sheetsTruncated":false})");
}

TEST_F(CalcReads, ReadsAWorkbookWithNothingInIt) {
  open({.name = "Empty.xlsx", .sheets = {{"Sheet1", {}}}});
  const std::string map = ask("workbookMap"), read = ask("readRange", {"A1:B1"}),
                    formulas = ask("readFormulas", {"A1:B1", "a1", true}),
                    value = evaluate("A1&\"!\""), chain = deep({"[Empty.xlsx]Sheet1!A1+1"});
  hands->close("Empty.xlsx");
  EXPECT_EQ(map, R"({"book":"Empty.xlsx","names":[],)"
                 R"("sheets":[{"name":"Sheet1","usedRange":"$A$1"}],"sheetsTruncated":false})");
  EXPECT_EQ(read, grid(1, 2, R"([["",""]])"));
  EXPECT_EQ(formulas, R"({"cols":2,"formulas":[["",""]],"rows":1,"values":[]})");
  EXPECT_EQ(value, R"({"ok":true,"value":"!"})");
  EXPECT_EQ(chain, R"({"ok":true,"value":1})");
}

TEST_F(CalcReads, MapsFiftyOneSheetsAndNoNames) {
  fakes::WorkbookDescription book{.name = "Fifty.xlsx", .sheets = {}};
  for (int i = 1; i <= 50; ++i) book.sheets.push_back({"S" + std::to_string(i), {{"A1", 1.0}}});
  open(book);
  const std::string fifty = ask("workbookMap");
  hands->close("Fifty.xlsx");
  EXPECT_THAT(fifty, HasSubstr(R"({"name":"S50","usedRange":"$A$1"}],"sheetsTruncated":false})"));
  book.name = "Many.xlsx";
  book.sheets.push_back({"S51", {{"A1", 1.0}}});
  open(book);
  const std::string map = ask("workbookMap");
  hands->close("Many.xlsx");
  EXPECT_THAT(map, HasSubstr(R"({"name":"S50","usedRange":"$A$1"},)"
                             R"({"name":"S51","usedRange":null}],"sheetsTruncated":true})"));
  EXPECT_THAT(map, HasSubstr(R"("names":[])"));
}

TEST_F(CalcReads, TakesAChartSheetOfAFileForASheetWithoutCells) {
  open({.name = "Chart.xlsx",
        .sheets = {{.name = "Chart1", .cells = {}, .chart = true}, {"Data", {{"A1", 5.0}}}}});
  const std::string map = ask("workbookMap"), read = ask("readRange", {"Chart1!A1"}),
                    value = evaluate("Data!A1+1");
  const std::vector<std::string> drawn = hands->shapes("Chart.xlsx", "Chart1");
  hands->close("Chart.xlsx");
  EXPECT_THAT(drawn, testing::SizeIs(1));
  EXPECT_THAT(map, HasSubstr(R"([{"name":"Chart1","usedRange":"$A$1"},)"
                             R"({"name":"Data","usedRange":"$A$1"}])"));
  EXPECT_EQ(read, grid(1, 1, R"([[""]])"));
  EXPECT_EQ(value, R"({"ok":true,"value":6})");
}

TEST_F(CalcReads, NoticesThatAWorkbookWasClosed) {
  open({.name = "Third.xlsx", .sheets = {{"Only", {{"A1", "third"}}}}});
  EXPECT_EQ(ask("readRange", {"A1"}), grid(1, 1, R"([["third"]])"));
  EXPECT_EQ(evaluate("Only!A1&1"), R"({"ok":true,"value":"third1"})");
  hands->close("Third.xlsx");
  EXPECT_EQ(ask("readRange", {"[Third.xlsx]Only!A1"}), failure("workbook not open: Third.xlsx"));
  EXPECT_EQ(ask("readRange", {"Only!A1"}), failure("sheet not found: Only"));
  EXPECT_EQ(evaluate("[Third.xlsx]Only!A1&1"),
            R"({"kind":"excelError","message":"#REF!","ok":false})");
  EXPECT_EQ(deep({"[Third.xlsx]Only!A1"}), R"({"ok":true,"value":"#REF!"})");
}

TEST_F(CalcReads, HasNothingToReadWithoutAWorkbook) {
  hands->close("Second.xlsx");
  hands->close("Edges.xlsx");
  const std::vector<std::string> replies{ask("readRange", {"A1"}),
                                         ask("readFormulas", {"A1", "a1", true}),
                                         ask("readRange", {"Data!A1"}), ask("workbookMap")};
  const std::string value = evaluate("1+1"), chain = deep({"1+1"});
  open({.name = "Second.xlsx", .sheets = {{"Data", {{"A1", "second"}}}}});
  open(edges());
  const std::string missing = "Microsoft Excel got an error: Can't get ";
  const std::string noRange = failure(missing + R"(range \"A1\".)");
  const std::string noBook = failure(missing + "workbook missing value.");
  EXPECT_THAT(replies, testing::ElementsAre(noRange, noRange, noBook, noBook));
  EXPECT_EQ(value, R"({"kind":"transport","message":")" + missing +
                       R"(application \"Microsoft Excel\".","ok":false})");
  EXPECT_EQ(chain, R"({"ok":true,"value":2})");
}

}  // namespace
}  // namespace quorin::host::calc
