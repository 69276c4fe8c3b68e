// Highlights and unhiding on a private Calc: the verbs, from the bridge to the office and with
// their record on disk, beside the same work done directly over UNO. One line for each step, in
// milliseconds, the median of several rounds taken in turn.
#include <chrono>
#include <com/sun/star/beans/XMultiPropertySet.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <fstream>

#include "bench/Rounds.h"
#include "host/Address.h"
#include "host/calc/CalcSession.h"
#include "host/calc/marks/MarkShape.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "tests/calc/CalcRoad.h"

namespace {

using namespace quorin;
using namespace quorin::host;
using namespace quorin::host::calc;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using Addresses = std::vector<std::string>;

constexpr const char* emptyWorkbook = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0" office:version="1.3"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="Data"/></office:spreadsheet></office:body></office:document>)";

Addresses scattered(int first, int count) {
  Addresses cells;
  for (int i = first; i < first + count; ++i)
    cells.push_back(columnLetters(1 + i * 7 % 50) + std::to_string(1 + i * 3));
  return cells;
}

// One change that leaves the undo list and the modified flag as they were, if nobody else is at
// work in the workbook.
class Unnoticed {
 public:
  explicit Unnoticed(const Workbook& workbook)
      : undo_(Reference<css::document::XUndoManagerSupplier>(workbook.document, UNO_QUERY_THROW)
                  ->getUndoManager()),
        flag_(workbook.document, UNO_QUERY_THROW),
        modified_(flag_->isModified()) {
    undo_->lock();
  }
  ~Unnoticed() {
    undo_->unlock();
    if (!modified_) flag_->setModified(false);
  }
  Unnoticed(const Unnoticed&) = delete;
  Unnoticed& operator=(const Unnoticed&) = delete;

 private:
  const Reference<css::document::XUndoManager> undo_;
  const Reference<css::util::XModifiable> flag_;
  const bool modified_;
};

// What a program does that knows the sheet and paints and clears no more than it is asked to.
class Direct {
 public:
  explicit Direct(const OfficeAddress& office)
      : session_(office, std::chrono::seconds(60)),
        workbook_(session_.workbook("Direct.fods")),
        sheet_(sheetOf(workbook_, "Data")),
        page_(drawPageOf(sheet_)) {}

  void paint(const Addresses& cells) {
    for (std::size_t first = 0; first < cells.size(); first += 40) {
      const NumberedMark mark = markOf(cells, first);
      const auto shape = makeMarkShape(workbook_.model, mark, outlinesOf(sheet_, mark.mark.areas));
      const Unnoticed guard(workbook_);
      page_->add(shape);
    }
  }
  void move(const Addresses& cells) {
    const NumberedMark mark = markOf(cells, 0);
    const auto outlines = outlinesOf(sheet_, mark.mark.areas);
    const auto marks = readMarks(page_);
    const Unnoticed guard(workbook_);
    Reference<css::beans::XMultiPropertySet>(marks.at(0).shape, UNO_QUERY_THROW)
        ->setPropertyValues(
            sequenceOf<rtl::OUString>({"Name", "PolyPolygon"}),
            sequenceOf({css::uno::Any(toUno(markName(mark))), css::uno::Any(outlines)}));
  }
  void clear(const Addresses& cells) {
    for (std::size_t first = 0; first < cells.size(); first += 40) markOf(cells, first);
    for (const PlacedMark& each : readMarks(page_)) {
      const Unnoticed guard(workbook_);
      page_->remove(each.shape);
    }
  }
  void setHidden(const std::vector<Area>& rows, bool hidden) {
    for (const Area& area : rows) {
      const Reference<css::table::XColumnRowRange> range(cellsOf(sheet_, area), UNO_QUERY_THROW);
      const Reference<css::beans::XPropertySet> properties(range->getRows(), UNO_QUERY_THROW);
      const Unnoticed guard(workbook_);
      properties->setPropertyValue("IsVisible", css::uno::Any(!hidden));
    }
  }

 private:
  // Each address is looked up in the sheet, as is to be done with one that may be a name.
  NumberedMark markOf(const Addresses& cells, std::size_t first) {
    NumberedMark mark{static_cast<int>(first) + 1,
                      {std::string(markFormula), Color{255, 0, 255}, {}}};
    for (std::size_t i = first; i < cells.size() && (i < first + 40); ++i) {
      sheet_->getCellRangeByName(toUno(cells[i]));
      mark.mark.areas.push_back(parseA1Area(cells[i]).value());
    }
    return mark;
  }

  CalcSession session_;
  Workbook workbook_;
  const Reference<css::sheet::XSpreadsheet> sheet_;
  const Reference<css::drawing::XDrawPage> page_;
};

JSONValue list(const Addresses& texts) {
  return JSONValue::Array(texts.begin(), texts.end());
}

void require(const Bridge::Reply& reply) {
  if (!reply.ok) throw std::runtime_error("a verb failed");
}

}  // namespace

int main() {
  const TemporaryFolder folder;
  std::ofstream(folder / "Bench.fods") << emptyWorkbook;
  CalcRoad road;
  // A workbook of its own: the keeper takes off marks that nobody told it of.
  std::ofstream(folder / "Direct.fods") << emptyWorkbook;
  road.open(folder / "Direct.fods");
  road.open(folder / "Bench.fods");
  Direct direct(road.office().open());
  const Addresses forty = scattered(0, 40), others = scattered(40, 40), many = scattered(0, 200);
  const std::vector<Area> block{{11, 1, 210, 1}};
  std::vector<Area> single;
  for (int i = 0; i < 200; ++i) single.push_back({11 + 2 * i, 1, 11 + 2 * i, 1});
  const auto mark = [&](const Addresses& cells) {
    require(road.bridge().dispatch("markCells", {list(cells), JSONValue::Array{255, 0, 255}}));
  };
  const auto clear = [&] { require(road.bridge().dispatch("clearMarks", {})); };
  const auto hide = [&](const std::vector<Area>& rows, bool hidden) {
    road.use([&](CalcSpreadsheet& calc) {
      calc.setHidden({{"Bench.fods", "Data"}, rows}, Axis::rows, hidden);
    });
  };
  Rounds rounds;
  constexpr int times = 15;
  for (int round = 0; round < times; ++round) {
    rounds.time("direct paint 40", [&] { direct.paint(forty); });
    rounds.time("direct move 40", [&] { direct.move(others); });
    direct.clear(others);
    rounds.time("direct paint 200", [&] { direct.paint(many); });
    rounds.time("direct clear 200", [&] { direct.clear(many); });
    mark(others);
    clear();
    rounds.time("verb paint 40", [&] { mark(forty); });
    clear();
    mark(forty);
    rounds.time("verb move 40", [&] { mark(others); });
    clear();
    rounds.time("verb paint 200", [&] { mark(many); });
    rounds.time("verb clear 200", [&] { clear(); });
    direct.setHidden(block, true);
    rounds.time("direct unhide 200 together", [&] { direct.setHidden(block, false); });
    hide(block, true);
    rounds.time("port unhide 200 together", [&] { hide(block, false); });
  }
  // By themselves: their traces stay on disk and would be written again with each of the others.
  for (int round = 0; round < times; round += 5) {
    direct.setHidden(single, true);
    rounds.time("direct unhide 200 scattered", [&] { direct.setHidden(single, false); });
    hide(single, true);
    rounds.time("port unhide 200 scattered", [&] { hide(single, false); });
  }
  for (const char* step : {"paint 40", "paint 200", "move 40", "clear 200"})
    rounds.compare("verb", step);
  for (const char* step : {"unhide 200 together", "unhide 200 scattered"})
    rounds.compare("port", step);
  return 0;
}
