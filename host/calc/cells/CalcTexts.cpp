#include "host/calc/cells/CalcTexts.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/chart2/data/XDataProvider.hpp>
#include <com/sun/star/chart2/data/XTextualDataSequence.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <map>
#include <optional>

#include "host/Address.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/grammar/CellErrors.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/ShownTexts.h"

namespace quorin::host::calc {
namespace {

using css::table::XCellRange;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

Grid<std::string> textsOneByOne(const Reference<XCellRange>& cells, const Area& area,
                                const CallLimits& limits) {
  Grid<std::string> grid = gridFor<std::string>(area);
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      limits.check();
      const Reference<css::text::XTextRange> cell(cells->getCellByPosition(column, row),
                                                  UNO_QUERY_THROW);
      cellAt(grid, row, column) = toText(cell->getString());
    }
  }
  return grid;
}

// Nothing for a user's workbook that was closed.
Reference<css::chart2::data::XDataProvider> textSource(const Workbook& workbook) {
  if (workbook.texts) return workbook.texts->of(workbook.document);
  const Reference<css::lang::XMultiServiceFactory> factory(workbook.document, UNO_QUERY_THROW);
  return {factory->createInstance("com.sun.star.chart2.data.DataProvider"), UNO_QUERY_THROW};
}

// The displayed texts of a rectangle in one call, whether its rows are hidden or not, column by
// column. What lies beyond a sheet's contents is cut off without a word.
Sequence<rtl::OUString> shownTexts(const Workbook& workbook, const std::string& sheet,
                                   const Area& area) {
  Reference<css::chart2::data::XDataProvider>& provider = workbook.shownTexts;
  if (!provider.is()) {
    provider = textSource(workbook);
    if (!provider.is()) return {};
    // A workbook may say that charts leave hidden rows and columns out.
    Reference<css::beans::XPropertySet>(provider, UNO_QUERY_THROW)
        ->setPropertyValue("IncludeHiddenCells", css::uno::Any(true));
  }
  const Reference<css::chart2::data::XTextualDataSequence> sequence(
      provider->createDataSequenceByRangeRepresentation(toUno(calcAddress(sheet, area))),
      UNO_QUERY);
  return sequence.is() ? sequence->getTextualData() : Sequence<rtl::OUString>();
}

// An error shows as Excel's text for it, whatever Calc calls it in the user's language.
void nameErrors(const Reference<XCellRange>& cells, const Area& area, Grid<std::string>& texts,
                const CallLimits& limits) {
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  std::map<std::string, std::string> names;
  const auto errors = query->queryFormulaCells(css::sheet::FormulaResult::ERROR);
  forEachCell(errors, area, [&](int row, int column) {
    limits.check();
    std::string& text = cellAt(texts, row, column);
    auto name = names.find(text);
    if (name == names.end() || text.empty()) {
      const std::string told = errorText(cells->getCellByPosition(column, row)->getError());
      name = names.insert_or_assign(text, told).first;
    }
    text = name->second;
  });
}

}  // namespace

// All of them in one call, or in two: of exactly the filled part when something was cut off.
Grid<std::string> bulkTexts(const Workbook& workbook, const std::string& sheet, const Area& area,
                            const CallLimits& limits) {
  Grid<std::string> grid = gridFor<std::string>(area);
  Area told = area;
  Sequence<rtl::OUString> texts = shownTexts(workbook, sheet, told);
  if (texts.getLength() != cellCount({told})) {
    const Reference<XCellRange> cells = cellsOf(workbook, sheet, area);
    const std::optional<Area> filled = findFilledPart(cells, area);
    if (!filled) return grid;
    told = *filled;
    texts = shownTexts(workbook, sheet, told);
    if (texts.getLength() != cellCount({told})) return textsOneByOne(cells, area, limits);
  }
  const rtl::OUString* next = texts.getConstArray();
  for (int column = told.firstColumn; column <= told.lastColumn; ++column) {
    for (int row = told.firstRow; row <= told.lastRow; ++row)
      setText(cellAt(grid, row - area.firstRow, column - area.firstColumn), *next++);
  }
  return grid;
}

namespace {

Grid<std::string> readPiece(const Workbook& workbook, const std::string& sheet, const Area& area,
                            Errors errors, const CallLimits& limits) {
  const bool several = area.firstRow != area.lastRow || area.firstColumn != area.lastColumn;
  if (several && errors == Errors::none) return bulkTexts(workbook, sheet, area, limits);
  const Reference<XCellRange> cells = cellsOf(workbook, sheet, area);
  Grid<std::string> texts =
      several ? bulkTexts(workbook, sheet, area, limits) : textsOneByOne(cells, area, limits);
  if (errors == Errors::possible) nameErrors(cells, area, texts, limits);
  return texts;
}

}  // namespace

Grid<std::string> readTexts(const Workbook& workbook, const RangeRef& range, Errors errors,
                            Texts texts, const CallLimits& limits) {
  PieceSizes sizes;
  // Each piece is three questions more.
  if (texts == Texts::shortOnes) sizes = {mostCellsWithTexts, mostCellsWithTexts};
  return readInPieces<std::string>(firstArea(range), limits, sizes, [&](const Area& piece) {
    return readPiece(workbook, range.sheet.sheet, piece, errors, limits);
  });
}

}  // namespace quorin::host::calc
