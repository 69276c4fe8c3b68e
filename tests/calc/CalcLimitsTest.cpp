// A call that nobody waits for any more stops working, wherever it is.
#include <fstream>
#include <functional>

#include "tests/calc/CalcReads.h"

namespace quorin::host::calc {
namespace {

class CalcLimitsTest : public CalcReads {
 protected:
  static inline const SheetRef sheet{"Long.xlsx", "Data"};

  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    fakes::SheetDescription data{"Data", {{"A1", 1.0}}};
    for (int row = 1; row <= 3000; ++row) {
      data.cells.push_back({"B" + std::to_string(row), 1.0, "=$A$1"});
      data.cells.push_back({"C" + std::to_string(row), CellError{"#DIV/0!"}, "=1/0"});
    }
    for (int row = 1; row <= 9; ++row)
      data.conditions.push_back({"D" + std::to_string(row), "=$A$1>" + std::to_string(row)});
    fakes::WorkbookDescription book{.name = "Long.xlsx", .sheets = {data}};
    for (int i = 0; i < 1500; ++i) book.names.push_back({"N" + std::to_string(i) + "_", "=1"});
    open(book);
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) {
      calc.activateWorkbook(sheet.book);
      calc.activateSheet(sheet);
    });
  }

  static RangeRef cells(const char* address) { return {sheet, parseA1(address).value()}; }

  // What the work comes to when the caller leaves after it has been asked so many times whether it
  // is still there.
  static std::string outcome(int questions, const std::function<void(CalcSpreadsheet&)>& work) {
    std::string told = "no end";
    road->use([&](CalcSpreadsheet& calc) {
      int asked = 0;
      calc.handlerBegins({.isOver = [&] { return ++asked > questions; }});
      try {
        work(calc);
      } catch (const SpreadsheetError& failure) {
        told = std::to_string(failure.number()) + (asked > questions + 1 ? " late" : "");
      }
      calc.handlerEnds();
    });
    return told;
  }
};

TEST_F(CalcLimitsTest, EndsEveryKindOfWork) {
  const std::map<std::string, std::function<void(CalcSpreadsheet&)>> kinds = {
      {"values", [](CalcSpreadsheet& calc) { calc.values(cells("A1:C3000")); }},
      {"formulas", [](CalcSpreadsheet& calc) { calc.formulas(cells("B1:C3000"), {}); }},
      {"local", [](CalcSpreadsheet& calc) { calc.localFormulas(cells("B1:C3000")); }},
      {"texts", [](CalcSpreadsheet& calc) { calc.displayedTexts(cells("B1:C3000")); }},
      {"dependents", [](CalcSpreadsheet& calc) { calc.dependents(cells("A1:C3000"), {}); }},
      {"names", [](CalcSpreadsheet& calc) { calc.definedNames(sheet.book); }},
      {"visible", [](CalcSpreadsheet& calc) { calc.visibleCells(cells("A1:C9,E1:F9,H1:I9")); }},
      {"conditions", [](CalcSpreadsheet& calc) { calc.formatConditions(cells("A1:D3000")); }},
      {"region",
       [](CalcSpreadsheet& calc) {
         for (int i = 0; i < 3; ++i) calc.currentRegion(cells("A1"));
       }},
      {"names of cells",
       [](CalcSpreadsheet& calc) { calc.evaluate("INDIRECT(\"A\"&ROW(A1))+1", sheet); }},
      {"hidden", [](CalcSpreadsheet& calc) { calc.hidden(cells("1:2,4:5,7:8"), Axis::rows); }},
      {"evaluate", [](CalcSpreadsheet& calc) { calc.evaluate("SUM(A1:B3000)+N1_", sheet); }},
      {"subtotal", [](CalcSpreadsheet& calc) { calc.evaluate("SUBTOTAL(9,A1:C3000)", sheet); }}};
  for (const auto& [name, work] : kinds) {
    EXPECT_EQ(outcome(1'000'000, work), "no end") << name;  // it ends well by itself
    EXPECT_EQ(outcome(0, work), "-1712") << name;
    EXPECT_EQ(outcome(2, work), "-1712") << name;
  }
}

// Not only before they begin, but among the cells.
TEST_F(CalcLimitsTest, AreLookedAtAmongTheCells) {
  const auto values = [](CalcSpreadsheet& calc) { calc.values(cells("A1:C3000")); };
  const auto formulas = [](CalcSpreadsheet& calc) { calc.formulas(cells("B1:C3000"), {}); };
  const auto local = [](CalcSpreadsheet& calc) { calc.localFormulas(cells("B1:C3000")); };
  const auto texts = [](CalcSpreadsheet& calc) { calc.displayedTexts(cells("B1:C3000")); };
  EXPECT_EQ(outcome(1000, values), "-1712");
  EXPECT_EQ(outcome(9000, formulas), "-1712");
  EXPECT_EQ(outcome(9000, local), "-1712");
  EXPECT_EQ(outcome(1000, texts), "-1712");
}

class CalcLimitsAmongScatteredCells : public CalcLimitsTest {
 protected:
  static inline const SheetRef scattered{"Scattered.xlsx", "Data"};

  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    fakes::SheetDescription data{"Data", {}};
    for (int row = 1; row <= 30000; row += 3)
      data.cells.push_back({"A" + std::to_string(row), 2.0});
    for (int row = 1; row <= 2500; ++row)
      data.cells.push_back({"C" + std::to_string(row), 3.0, "=1+2"});
    open({.name = "Scattered.xlsx", .sheets = {data}});
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) {
      calc.activateWorkbook(scattered.book);
      calc.activateSheet(scattered);
    });
  }
};

// Half of the cells may have been written when the work ended.
TEST_F(CalcLimitsAmongScatteredCells, LeaveNoValueToTheNextCallThatIsNotTrue) {
  for (const auto& [expression, whole] :
       {std::pair("SUM(A1:A9)+SUM(C1:C2500)", R"({"ok":true,"value":7506})"),
        std::pair("SUBTOTAL(9,C2:C4)+SUM(A1:A9)", R"({"ok":true,"value":15})")}) {
    bool ends = false;
    for (int questions = 0; !ends && questions < 100; ++questions) {
      evaluate("SUM(A4:C2499)");  // leaves other cells there
      ends = outcome(questions, [each = expression](CalcSpreadsheet& calc) {
               calc.evaluate(each, scattered);
             }) == "no end";
      EXPECT_EQ(evaluate(expression), whole) << questions;
    }
    EXPECT_TRUE(ends) << expression;
  }
}

TEST_F(CalcLimitsAmongScatteredCells, EndAfterFewPieces) {
  int asked = 0;
  Evaluation sum;
  road->use([&](CalcSpreadsheet& calc) {
    calc.handlerBegins({.isOver = [&] {
      ++asked;
      return false;
    }});
    sum = calc.evaluate("SUM(A1:A30000)", scattered);
    calc.handlerEnds();
  });
  EXPECT_EQ(sum, Evaluation(CellValue(20000.0)));
  EXPECT_LT(asked, 500);
}

// Among which marks are looked for.
TEST_F(CalcLimitsTest, AreLookedAtAmongTheShapesOfASheet) {
  for (int i = 0; i < 40; ++i) hands->draw("Long.xlsx", "Data", "Shape " + std::to_string(i));
  const auto conditions = [](CalcSpreadsheet& calc) { calc.formatConditions(cells("G1")); };
  EXPECT_EQ(outcome(1000, conditions), "no end");
  EXPECT_EQ(outcome(30, conditions), "-1712");
  hands->eraseShapes("Long.xlsx", "Data");
  EXPECT_EQ(outcome(30, conditions), "no end");
}

constexpr const char* tableBook = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="Data"><table:table-row><table:table-cell office:value-type="string">
<text:p>Net</text:p></table:table-cell></table:table-row><table:table-row><table:table-cell
 office:value-type="float" office:value="20"/></table:table-row></table:table>
<table:database-ranges><table:database-range table:name="Sales"
 table:target-range-address="Data.A1:Data.XFD2" table:contains-header="true"/></table:database-ranges>
</office:spreadsheet></office:body></office:document>)";

TEST_F(CalcLimitsTest, AreLookedAtAmongTheHeadersOfATable) {
  std::ofstream(*folder / "Table.fods") << tableBook;
  road->open(*folder / "Table.fods");
  const SheetRef data{"Table.fods", "Data"};
  const auto named = [&data](CalcSpreadsheet& calc) {
    EXPECT_EQ(calc.named(data, "Sales[Net]"), (RangeRef{data, {{2, 1, 2, 1}}}));
  };
  EXPECT_EQ(outcome(1000, named), "no end");
  EXPECT_EQ(outcome(5, named), "-1712");
}

// Nobody can end what Calc does in one go, so it is not asked of it.
TEST_F(CalcLimitsAmongScatteredCells, AskNothingOfCalcThatItWouldNotEnd) {
  const auto refused = [](const std::string& why) {
    return R"({"kind":"transport","message":"Microsoft Excel got an error: The expression )" + why +
           R"(","ok":false})";
  };
  const auto looks = refused("looks through too many cells too often");
  EXPECT_EQ(evaluate("SUM(COUNTIF(A1:A30000,A1:A30000))"), looks);
  EXPECT_EQ(evaluate("SUM(COUNTIF(A:A,A:A))"), looks);
  EXPECT_EQ(evaluate("LEN(SUBSTITUTE(REPT(\"a\",32767),\"a\",REPT(\"b\",32767)))"), looks);
  EXPECT_EQ(evaluate("COMBIN(10^12,A1*10^11)"), refused("counts too far"));
  EXPECT_EQ(evaluate("SUM(MUNIT(C1*3000))"), refused("makes arrays of too many cells"));
  EXPECT_EQ(evaluate("SUM(LEN(REPT(\"x\",32767)&ROW(1:9000)))"),
            refused("makes arrays of too much text"));
  EXPECT_EQ(deep({"SUM(COUNTIF(A1:A30000,A1:A30000))"}), looks);
  // What is little work is done, and what is not known before is not wrong.
  EXPECT_EQ(evaluate("SUM(COUNTIF(A:A,A1:A200))"), R"({"ok":true,"value":670000})");
  EXPECT_EQ(evaluate("COMBIN(C1*2,A1)"), R"({"ok":true,"value":15})");
  EXPECT_EQ(evaluate("SUM(COMBIN(49,ROW(5:6)))"), R"({"ok":true,"value":15890700})");
  EXPECT_EQ(deep({"COMBIN([Scattered.xlsx]Data!C1*2,[Scattered.xlsx]Data!A1)"}),
            R"({"ok":true,"value":15})");
  EXPECT_EQ(evaluate("SUM(MUNIT(C1))"), R"({"ok":true,"value":3})");
  EXPECT_EQ(evaluate("SUBSTITUTE(\"a-b\",\"-\",A1)"), R"({"ok":true,"value":"a2b"})");
}

TEST_F(CalcLimitsTest, LeaveTheNextCallAlone) {
  EXPECT_EQ(outcome(3, [](CalcSpreadsheet& calc) { calc.values(cells("A1:C3000")); }), "-1712");
  EXPECT_EQ(evaluate("SUM(A1:B3000)"), R"({"ok":true,"value":3001})");
}

}  // namespace
}  // namespace quorin::host::calc
