// Addresses that are more than cells, through the verbs: parts of tables, names of other sheets and
// of several areas, other cases of letters.
#include <fstream>

#include "tests/calc/CalcReads.h"

namespace quorin::host::calc {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* salesBook = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="Data">
<table:table-row><table:table-cell office:value-type="string"><text:p>Item</text:p></table:table-cell>
<table:table-cell office:value-type="string"><text:p>Net</text:p></table:table-cell>
<table:table-cell office:value-type="string"><text:p>Tax, all!</text:p></table:table-cell></table:table-row>
<table:table-row><table:table-cell office:value-type="string"><text:p>Nut</text:p></table:table-cell>
<table:table-cell office:value-type="float" office:value="20"/>
<table:table-cell office:value-type="float" office:value="2"/></table:table-row>
<table:table-row><table:table-cell office:value-type="string"><text:p>Bolt</text:p></table:table-cell>
<table:table-cell office:value-type="float" office:value="30"/>
<table:table-cell office:value-type="float" office:value="3" table:formula="of:=[.B3]/10"/></table:table-row>
</table:table><table:table table:name="Übrige Blätter">
<table:table-row><table:table-cell office:value-type="float" office:value="7"/></table:table-row>
<table:named-expressions><table:named-range table:name="lokal"
 table:base-cell-address="$Data.$A$1" table:cell-range-address="$Data.$B$2"/></table:named-expressions>
</table:table>
<table:named-expressions>
<table:named-range table:name="Größe"
 table:base-cell-address="$Data.$A$1" table:cell-range-address="$Data.$B$3"/>
<table:named-expression table:name="Corners" table:base-cell-address="$Data.$A$1"
 table:expression="[$Data.$A$1]~[$Data.$B$2:$Data.$C$3]"/>
<table:named-expression table:name="Through" table:base-cell-address="$Data.$A$1"
 table:expression="[$Data.$A$1:$'Übrige Blätter'.$A$1]"/>
</table:named-expressions>
<table:database-ranges><table:database-range table:name="Säle"
 table:target-range-address="Data.A1:Data.C3" table:contains-header="true"/></table:database-ranges>
</office:spreadsheet></office:body></office:document>)";

class CalcAddresses : public CalcReads {
 protected:
  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    std::ofstream(*folder / "Sales.fods") << salesBook;
    road->open(*folder / "Sales.fods");
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) {
      calc.activateWorkbook("Sales.fods");
      calc.activateSheet({"Sales.fods", "Data"});
    });
  }
};

// What stands before it would be an address.
TEST_F(CalcAddresses, DoNotEndAtANullCharacter) {
  const std::string address("B2\0:C3", 6);
  for (const char* const verb : {"readRange", "dependents"})
    EXPECT_THAT(ask(verb, {address}), testing::HasSubstr("Can't get range")) << verb;
  EXPECT_THAT(ask("markCells", {JSONValue::Array{address}, JSONValue::Array{255, 0, 0}}),
              testing::HasSubstr("range does not exist"));
  EXPECT_THAT(ask("evaluate", {address}), testing::HasSubstr("excelError"));
  EXPECT_EQ(ask("evaluate", {"B2"}), R"({"ok":true,"value":20})");
}

TEST_F(CalcAddresses, MayHoldCommasAndMarksInBrackets) {
  EXPECT_EQ(ask("readRange", {"Säle[[#All],[Net]]"}), grid(3, 1, R"([["Net"],[20],[30]])"));
  EXPECT_EQ(ask("readRange", {"Säle[Tax, all!]"}), grid(2, 1, "[[2],[3]]"));
  EXPECT_EQ(ask("readRange", {"Säle[[#Headers],[Net]:[Tax, all!]]"}),
            grid(1, 2, R"([["Net","Tax, all!"]])"));
  EXPECT_EQ(ask("select", {Array{"Säle[[#All],[Net]]", "A3"}}), R"({"areas":2})");
  EXPECT_EQ(ask("dependents", {"Säle[[#Data],[Net]]"}), R"("$C$3")");
  EXPECT_THAT(ask("reveal", {Array{"Säle[[#All],[Net]]"}, 0}),
              testing::AllOf(Not(HasSubstr("failed")), Not(HasSubstr("unbound"))));
}

TEST_F(CalcAddresses, MayBeNamesOfOneSheetForCellsOfAnother) {
  for (const char* name : {"'Übrige Blätter'!lokal", "'ÜBRIGE BLÄTTER'!LOKAL"}) {
    EXPECT_EQ(ask("readRange", {name}), grid(1, 1, "[[20]]")) << name;
    EXPECT_EQ(ask("select", {Array{name}}), R"({"areas":1})") << name;
    EXPECT_EQ(evaluate(std::string(name) + "*2"), R"({"ok":true,"value":40})") << name;
  }
}

TEST_F(CalcAddresses, MayBeNamesOfSeveralAreasButOfOneSheet) {
  EXPECT_THAT(ask("readRange", {"Corners"}),
              HasSubstr("multi-area 'Corners': 5 cells in a 1×1 frame"));
  EXPECT_EQ(ask("select", {Array{"Corners"}}), R"({"areas":2})");
  EXPECT_THAT(ask("readRange", {"Through"}), StartsWith("failed"));
  EXPECT_THAT(ask("readRange", {"'Übrige Blätter'!Through"}), StartsWith("failed"));
}

TEST_F(CalcAddresses, TakeNamesInAnyCaseOfTheirLetters) {
  EXPECT_EQ(ask("readRange", {"GRÖSSE"}).substr(0, 6), "failed");  // ß has no other case
  EXPECT_EQ(ask("readRange", {"gRÖßE"}), grid(1, 1, "[[30]]"));
  EXPECT_EQ(ask("readRange", {"SÄLE[NET]"}), grid(2, 1, "[[20],[30]]"));
  EXPECT_EQ(evaluate("SUM(säLE[net])+gRÖßE"), R"({"ok":true,"value":80})");
  EXPECT_EQ(evaluate("SUM(INDIRECT(\"'übrige blätter'!A1\"),'übrige blätter'!A1)"),
            R"({"ok":true,"value":14})");
}

// As Excel itself writes them.
TEST_F(CalcAddresses, MayNameTheSheetTwiceAndTheWorkbookAlone) {
  const std::vector<std::string> spelled{"Data!A2:Data!B3", "'Data'!B3:data!$A$2",
                                         "[Sales.fods]Data!A2:[Sales.fods]Data!B3"};
  for (const std::string& address : spelled) {
    EXPECT_EQ(ask("readRange", {address}), grid(2, 2, R"([["Nut",20],["Bolt",30]])")) << address;
    EXPECT_THAT(ask("readFormulas", {address, "a1", false}), HasSubstr(R"("rows":2)")) << address;
    EXPECT_EQ(ask("select", {Array{address}}), R"({"areas":1})") << address;
    EXPECT_EQ(ask("activate", {address}), "true") << address;
    EXPECT_EQ(ask("dependents", {address}), R"("$C$3")") << address;
    EXPECT_EQ(evaluate("SUM(" + address + ")"), R"({"ok":true,"value":50})") << address;
  }
  EXPECT_EQ(deep({"SUM([Sales.fods]Data!A2:[Sales.fods]Data!B3)"}), R"({"ok":true,"value":50})");
  EXPECT_EQ(ask("readRange", {"Edges.xlsx!Rate"}), grid(1, 1, "[[12.5]]"));
  EXPECT_EQ(ask("readRange", {"Sales.fods!Säle[Tax, all!]"}), grid(2, 1, "[[2],[3]]"));
  EXPECT_EQ(ask("select", {Array{"Sales.fods!Größe"}}), R"({"areas":1})");
  for (const char* nothing : {"Data!A1:'Übrige Blätter'!A1", "Data!A1:Nowhere!A1", "Gone.xlsx!Rate",
                              "Sales.fods!A1", "Sales.fods!Nothing"}) {
    EXPECT_THAT(ask("readRange", {nothing}), StartsWith("failed")) << nothing;
  }
}

// A NUL ends nothing: what stands before it is not taken for the address.
TEST_F(CalcAddresses, AreTakenWholeWithAllThatIsInThem) {
  const std::string nul(1, '\0');
  for (const std::string& address : {"A1" + nul, "A1" + nul + "junk", nul + "A1", "Data!A1" + nul,
                                     "Data" + nul + "!A1", "Größe" + nul, nul}) {
    EXPECT_THAT(ask("readRange", {address}), StartsWith("failed"));
    EXPECT_THAT(ask("readFormulas", {address, "a1", false}), StartsWith("failed"));
    EXPECT_THAT(ask("select", {Array{address}}), StartsWith("failed"));
    EXPECT_THAT(ask("activate", {address}), StartsWith("failed"));
    EXPECT_THAT(ask("dependents", {address}), StartsWith("failed"));
    EXPECT_THAT(ask("reveal", {Array{address}, 0}), HasSubstr("unbound"));
    EXPECT_THAT(evaluate(address + "+1"), Not(HasSubstr(R"("ok":true)")));
    EXPECT_THAT(deep({address}), Not(HasSubstr(R"("value":"Item")")));
  }
}

TEST_F(CalcAddresses, NameWhatBelongsToAnotherWorkbook) {
  const std::string thirty = R"({"ok":true,"value":30})", twenty = R"({"ok":true,"value":20})";
  EXPECT_EQ(deep({"[Sales.fods]gRÖßE"}), thirty);
  EXPECT_EQ(deep({"Sales.fods!Größe"}), thirty);
  EXPECT_EQ(deep({"'Sales.fods'!Größe+0"}), thirty);
  EXPECT_EQ(deep({"SUM(SALES.FODS!Säle)"}), R"({"ok":true,"value":55})");
  EXPECT_EQ(deep({"SUM(Sales.fods!Säle[Net])"}), R"({"ok":true,"value":50})");
  EXPECT_EQ(deep({"'[Sales.fods]Übrige Blätter'!lokal"}), twenty);
  EXPECT_EQ(deep({"Edges.xlsx!Rate*2"}), R"({"ok":true,"value":25})");
  EXPECT_EQ(evaluate("Edges.xlsx!Rate*2"), R"({"ok":true,"value":25})");
  EXPECT_EQ(deep({"Gone.xlsx!Rate"}), R"({"ok":true,"value":"#REF!"})");
}

TEST_F(CalcAddresses, StandInExpressionsAsExcelWritesThem) {
  ASSERT_EQ(ask("select", {Array{"B1"}}), R"({"areas":1})");
  EXPECT_EQ(evaluate("SUM(B2:B3 3:3)"), R"({"ok":true,"value":30})");
  EXPECT_EQ(evaluate("SUM(B:B $2:$2)"), R"({"ok":true,"value":20})");
  EXPECT_EQ(evaluate("@A1:C1"), R"({"ok":true,"value":"Net"})");
  EXPECT_EQ(evaluate("@B2:B3"), R"({"kind":"excelError","message":"#VALUE!","ok":false})");
  EXPECT_EQ(evaluate("N(B2:B3)&T(A2:A3)"), R"({"ok":true,"value":"20Nut"})");
  EXPECT_EQ(evaluate("N(B2:B3)"), R"({"ok":true,"value":20})");
  EXPECT_EQ(deep({"HYPERLINK(\"http://x.example\",\"abc\")", "LEN(A1)"}),
            R"({"ok":true,"value":3})");
  EXPECT_EQ(evaluate("{1,#N/A}"), R"({"ok":true,"value":[[1,null]]})");
  EXPECT_EQ(evaluate("SUM(IFERROR({1,#N/A;#DIV/0!,\"a\"},5))"), R"({"ok":true,"value":11})");
}

// What is blank between cells far apart is neither counted nor read.
TEST_F(CalcAddresses, MayReachCellsFarApart) {
  open({.name = "Apart.xlsx",
        .sheets = {{"Data", {{"A1", 1.0}, {"B1", 2.0}, {"C1", 3.0}, {"ZZ50000", 4.0}}}}});
  EXPECT_EQ(evaluate("SUM(A:ZZ)"), R"({"ok":true,"value":10})");
  EXPECT_EQ(evaluate("OFFSET(A1,49999,701)*2"), R"({"ok":true,"value":8})");
}

// Excel's property tells of "the cell or cells whose values depend directly on cells in the
// range", those of a whole sheet too.
TEST_F(CalcAddresses, DependOnOneAnother) {
  open({.name = "Chain.xlsx",
        .sheets = {{"Data",
                    {{"A1", 1.0},
                     {"A2", 2.0, "=A1*2"},
                     {"A3", 4.0, "=SUM(Start)"},
                     {"A4", 5.0, "=C1+1"},
                     {"B1", 3.0, "=A2+1"},
                     {"C1", 4.0, "=B1+1"},
                     {"D1", "file:A", "=HYPERLINK(\"file:\"&D2,D3)"}}}},
        .names = {{"Start", "=Data!$A$1:$A$2"}}});
  EXPECT_EQ(ask("dependents", {"D1:D3"}), R"("$D$1")");  // what it calls does not matter
  EXPECT_EQ(ask("dependents", {"A1:A4"}), R"("$B$1,$A$2,$A$3")");
  EXPECT_EQ(ask("dependents", {"A:C"}), R"("$A$2,$A$3,$A$4,$B$1,$C$1")");
  EXPECT_EQ(ask("dependents", {"A2"}), R"("$A$3,$B$1")");
  EXPECT_EQ(ask("dependents", {"A3:A4"}), R"("")");
}

// Of a file that Excel saved: errors are constants, and names are told as they are spelled there.
TEST_F(CalcAddresses, AreReadWithTheSheetsOwnSpelling) {
  open({.name = "Spelled.xlsx",
        .sheets = {{"Data",
                    {{"A1", CellError{"#DIV/0!"}},
                     {"A2", CellError{"#N/A"}},
                     {"A3", CellError{"#N/A"}, "=NA()"},
                     {"A4", 1e-16, "=1E-16"},
                     {"A5", 1e20, "=1E+20+1.5E-7*A1"},
                     {"A6", CellError{"#REF!"}, "=#REF!"}}}},
        .names = {{"Rate", "=DATA!$A$1:$B$1"}}});
  EXPECT_EQ(ask("readFormulas", {"A1:A6", "a1", true}),
            R"x({"cols":1,"formulas":[[""],[""],["=NA()"],["=1E-16"],["=1E+20+0.00000015*A1"],)x"
            R"(["=#REF!"]],"rows":6,"values":[]})");
  EXPECT_THAT(ask("readCell"), HasSubstr(R"("formula":"")"));
  EXPECT_THAT(ask("readCell"), HasSubstr(R"("formulaLocal":"")"));
  EXPECT_THAT(ask("workbookMap"), HasSubstr(R"(=Data!$A$1:$B$1)"));
}

}  // namespace
}  // namespace quorin::host::calc
