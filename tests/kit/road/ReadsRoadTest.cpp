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

TEST_F(ReadsRoad, RefusesAnErrorInTheFirstOfSeveralColumns) {
  excel_->quirks.dropsErrorRows = true;
  excel_->quirks.diesOfFirstColumnErrors = true;
  excel_->quirks.writesFormulasAsText = true;
  EXPECT_THAT(ask("readRange", {"C2:D4"}),
              HasSubstr("range has an error in its first column - Excel cannot read it as a grid"));
  EXPECT_EQ(ask("readFormulas", {"C4:E6", "a1"}),
            R"({"cols":3,"formulas":[["=1/0","",""],["","",""],["","",""]],"rows":3,)"
            R"("values":[["","",""],["","",""],["","",true]]})");
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
}

TEST_F(ReadsRoad, EvaluatesAChain) {
  EXPECT_EQ(ask("deepEval", {plan({"1+2"})}), R"({"ok":true,"value":3})");
  EXPECT_EQ(ask("deepEval", {plan({"1+2", "A1*2", "A2+A1"})}), R"({"ok":true,"value":9})");
  EXPECT_EQ(ask("deepEval", {plan({"1/0"})}), R"({"ok":true,"value":"#DIV/0!"})");
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
  EXPECT_EQ(memory_->workbooks(), std::vector<std::string>{"Known.xlsx"});
}

}  // namespace
}  // namespace quorin
