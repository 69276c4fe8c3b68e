// The map of a workbook of 130 sheets, and evaluations, on a private Calc: the verbs, from the
// bridge to the office, beside the same questions asked directly over UNO. One line for each, in
// milliseconds, the median of several rounds taken in turn.
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XNamedRange.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>
#include <com/sun/star/sheet/XSheetCellCursor.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/sheet/XUsedAreaCursor.hpp>
#include <fstream>

#include "bench/Rounds.h"
#include "host/calc/CalcSession.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "tests/calc/CalcRoad.h"

namespace {

using namespace quorin;
using namespace quorin::host;
using namespace quorin::host::calc;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr int sheetCount = 130;
constexpr int mappedSheets = 50;  // whose used ranges the map tells
constexpr int evaluations = 20;   // in one round, as one of them takes but a moment

std::string workbookText() {
  std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>)";
  for (int sheet = 1; sheet <= sheetCount; ++sheet) {
    text += "<table:table table:name=\"Sheet " + std::to_string(sheet) + "\">";
    for (int row = 0; row < 20; ++row) {
      text += "<table:table-row>";
      for (int column = 0; column < 10; ++column)
        text += "<table:table-cell office:value-type=\"float\" office:value=\"" +
                std::to_string(row * 10 + column) + "\"/>";
      text += "</table:table-row>";
    }
    text += "</table:table>";
  }
  return text + "</office:spreadsheet></office:body></office:document>";
}

class Direct {
 public:
  explicit Direct(const OfficeAddress& office)
      : session_(office, std::chrono::seconds(60)),
        workbook_(session_.workbook("Direct.fods")),
        spare_(sheetOf(workbook_, "Sheet 2")->getCellByPosition(50, 0)) {}

  // Names, used areas and defined names. How many cells that was, lest it be left out.
  int map() const {
    const Reference<css::sheet::XSpreadsheetDocument> document(workbook_.model, UNO_QUERY_THROW);
    const auto sheets = document->getSheets();
    int told = namesOf(workbook_.model);
    for (const rtl::OUString& name : sheets->getElementNames()) {
      Reference<css::sheet::XSpreadsheet> sheet;
      sheets->getByName(name) >>= sheet;
      if (told++ < mappedSheets) told += usedRows(sheet);
      told += namesOf(sheet);
    }
    return told;
  }

  // In a spare cell, which an evaluation that leaves no trace must not do.
  double evaluate(const char* formula) const {
    spare_->setFormula(rtl::OUString::createFromAscii(formula));
    const double value = spare_->getError() == 0 ? spare_->getValue() : -1;
    spare_->setFormula({});
    return value;
  }

 private:
  static int usedRows(const Reference<css::sheet::XSpreadsheet>& sheet) {
    const Reference<css::sheet::XSheetCellCursor> cells = sheet->createCursor();
    const Reference<css::sheet::XUsedAreaCursor> cursor(cells, UNO_QUERY_THROW);
    cursor->gotoStartOfUsedArea(false);
    cursor->gotoEndOfUsedArea(true);
    const Reference<css::sheet::XCellRangeAddressable> range(cells, UNO_QUERY_THROW);
    const auto address = range->getRangeAddress();
    return address.EndRow - address.StartRow + 1;
  }

  static int namesOf(const Reference<css::uno::XInterface>& owner) {
    const Reference<css::beans::XPropertySet> properties(owner, UNO_QUERY_THROW);
    Reference<css::sheet::XNamedRanges> ranges;
    properties->getPropertyValue("NamedRanges") >>= ranges;
    int told = 0;
    for (const rtl::OUString& name : ranges->getElementNames()) {
      Reference<css::sheet::XNamedRange> range;
      ranges->getByName(name) >>= range;
      told += range->getContent().getLength();
    }
    return told;
  }

  CalcSession session_;
  Workbook workbook_;
  const Reference<css::table::XCell> spare_;
};

struct Formula {
  const char *name, *excel, *calc;
  double value;
};

}  // namespace

int main() {
  const TemporaryFolder folder;
  std::ofstream(folder / "Calls.fods") << workbookText();
  std::ofstream(folder / "Direct.fods") << workbookText();
  CalcRoad road;
  // A workbook of its own, so that the other one does not change.
  road.open(folder / "Direct.fods");
  road.open(folder / "Calls.fods");
  const Direct direct(road.office().open());
  const auto ask = [&](const char* verb, const JSONValue::Array& arguments) {
    if (!road.bridge().dispatch(verb, arguments).ok) throw std::runtime_error("a verb failed");
  };
  const Formula formulas[] = {
      {"evaluate 1+2, 20 times", "1+2", "=1+2", 3},
      {"evaluate a sum, 20 times", "SUM('Sheet 3'!A1:B20)*2", "=SUM($'Sheet 3'.A1:B20)*2", 7640},
  };
  Rounds rounds;
  int told = 0;
  constexpr int times = 20;
  for (int round = 0; round < times; ++round) {
    rounds.time("direct workbookMap", [&] { told += direct.map(); });
    rounds.time("verb workbookMap", [&] { ask("workbookMap", {}); });
    for (const Formula& formula : formulas) {
      const std::string name = formula.name;
      rounds.time("direct " + name, [&] {
        for (int i = 0; i < evaluations; ++i)
          if (direct.evaluate(formula.calc) != formula.value)
            throw std::runtime_error("Calc gives another value");
      });
      rounds.time("verb " + name, [&] {
        for (int i = 0; i < evaluations; ++i) ask("evaluate", {formula.excel});
      });
    }
  }
  if (told == 0) throw std::runtime_error("the map is empty");
  rounds.compare("verb", "workbookMap");
  for (const Formula& formula : formulas) rounds.compare("verb", formula.name);
  return 0;
}
