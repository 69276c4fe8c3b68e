#include "host/calc/CalcCells.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/chart2/data/XDataProvider.hpp>
#include <com/sun/star/chart2/data/XTextualDataSequence.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/CellFlags.hpp>
#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangeFormula.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <functional>
#include <map>
#include <optional>
#include <string_view>

#include "host/Address.h"
#include "host/calc/BooleanFormats.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/CellData.h"
#include "host/calc/CellErrors.h"
#include "host/calc/FormulaTranslator.h"
#include "host/calc/ReferenceText.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::table::XCellRange;
using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

void refuseTooMany(const Area& area) {
  if (cellCount({area}) > mostCells) throw SpreadsheetError(-50, "The range has too many cells");
}

template <typename T>
Grid<T> gridFor(const Area& area) {
  refuseTooMany(area);
  Grid<T> grid;
  grid.rows = rowCount(area);
  grid.columns = columnCount(area);
  grid.cells.resize(static_cast<std::size_t>(grid.rows) * static_cast<std::size_t>(grid.columns));
  return grid;
}

template <typename T>
T& cellAt(Grid<T>& grid, int row, int column) {  // 0-based
  return grid.cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.columns) +
                    static_cast<std::size_t>(column)];
}

// Calls `visit` with the 0-based position of every cell of `found` that lies in the area.
void forEachCell(const Reference<css::sheet::XSheetCellRanges>& found, const Area& area,
                 const std::function<void(int row, int column)>& visit) {
  for (const auto& address : found->getRangeAddresses()) {
    const Area part = areaOf(address);
    for (int row = std::max(part.firstRow, area.firstRow);
         row <= std::min(part.lastRow, area.lastRow); ++row) {
      for (int column = std::max(part.firstColumn, area.firstColumn);
           column <= std::min(part.lastColumn, area.lastColumn); ++column) {
        visit(row - area.firstRow, column - area.firstColumn);
      }
    }
  }
}

Grid<std::string> textsOneByOne(const Reference<XCellRange>& cells, const Area& area) {
  Grid<std::string> grid = gridFor<std::string>(area);
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      const Reference<css::text::XTextRange> cell(cells->getCellByPosition(column, row),
                                                  UNO_QUERY_THROW);
      cellAt(grid, row, column) = toText(cell->getString());
    }
  }
  return grid;
}

// The smallest rectangle with all that stands in the cells; nothing when they are blank.
std::optional<Area> filledPart(const Reference<XCellRange>& cells) {
  constexpr sal_Int16 contents = css::sheet::CellFlags::VALUE | css::sheet::CellFlags::DATETIME |
                                 css::sheet::CellFlags::STRING | css::sheet::CellFlags::FORMULA;
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  std::optional<Area> filled;
  for (const auto& address : query->queryContentCells(contents)->getRangeAddresses()) {
    const Area part = areaOf(address);
    if (!filled) filled = part;
    filled = Area{
        std::min(filled->firstRow, part.firstRow), std::min(filled->firstColumn, part.firstColumn),
        std::max(filled->lastRow, part.lastRow), std::max(filled->lastColumn, part.lastColumn)};
  }
  return filled;
}

// The displayed texts of a rectangle in one call, whether its rows are hidden or not, column by
// column. What lies beyond a sheet's contents is cut off without a word.
Sequence<rtl::OUString> shownTexts(const Workbook& workbook, const std::string& sheet,
                                   const Area& area) {
  Reference<css::chart2::data::XDataProvider>& provider = workbook.shownTexts;
  if (!provider.is()) {
    const Reference<css::lang::XMultiServiceFactory> factory(workbook.document, UNO_QUERY_THROW);
    provider.set(factory->createInstance("com.sun.star.chart2.data.DataProvider"), UNO_QUERY_THROW);
    // A workbook may say that charts leave hidden rows and columns out.
    Reference<css::beans::XPropertySet>(provider, UNO_QUERY_THROW)
        ->setPropertyValue("IncludeHiddenCells", Any(true));
  }
  const Reference<css::chart2::data::XTextualDataSequence> sequence(
      provider->createDataSequenceByRangeRepresentation(toUno(calcAddress(sheet, area))),
      UNO_QUERY);
  return sequence.is() ? sequence->getTextualData() : Sequence<rtl::OUString>();
}

// All of them in one call, or in two: of exactly the filled part when something was cut off.
Grid<std::string> bulkTexts(const Workbook& workbook, const std::string& sheet, const Area& area) {
  Grid<std::string> grid = gridFor<std::string>(area);
  Area told = area;
  Sequence<rtl::OUString> texts = shownTexts(workbook, sheet, told);
  if (texts.getLength() != cellCount({told})) {
    const Reference<XCellRange> cells = cellsOf(workbook, sheet, area);
    const std::optional<Area> filled = filledPart(cells);
    if (!filled) return grid;
    told = *filled;
    texts = shownTexts(workbook, sheet, told);
    if (texts.getLength() != cellCount({told})) return textsOneByOne(cells, area);
  }
  const int rows = rowCount(told);
  for (sal_Int32 i = 0; i < texts.getLength(); ++i) {
    cellAt(grid, told.firstRow - area.firstRow + i % rows,
           told.firstColumn - area.firstColumn + i / rows) = toText(texts[i]);
  }
  return grid;
}

struct Place {
  int row, column;  // 0-based, in the grid
};

// Asks a question of cells of one rectangle, but only once for all those that look alike: their
// displayed texts come in one call, whatever language they are in.
class Inquiry {
 public:
  Inquiry(const Workbook& workbook, const std::string& sheet, const Reference<XCellRange>& cells,
          const Area& area)
      : workbook_(workbook), sheet_(sheet), cells_(cells), area_(area) {}

  // Calls `ask` with a place and its text, and `apply` with every place and the answer that fits
  // it.
  template <typename Ask, typename Apply>
  void about(const std::vector<Place>& places, Ask ask, Apply apply) {
    if (places.empty()) return;
    std::map<std::string, decltype(ask(Place(), {}))> answers;
    const Area around = enclosing(places);
    const bool scattered = static_cast<long long>(places.size()) <= fewEnoughToAskEach &&
                           cellCount({around}) > fewEnoughToReadAll;
    const auto texts = scattered || cellCount({around}) == 1
                           ? std::nullopt
                           : std::optional(bulkTexts(workbook_, sheet_, around));
    for (const Place& place : places) {
      const std::string text =
          texts ? texts->at(area_.firstRow + place.row - around.firstRow,
                            area_.firstColumn + place.column - around.firstColumn)
                : textAt(place);
      auto answer = answers.find(text);
      if (answer == answers.end()) answer = answers.emplace(text, ask(place, text)).first;
      apply(place, answer->second);
    }
  }

  Reference<css::table::XCell> cellAt(const Place& place) const {
    return cells_->getCellByPosition(place.column, place.row);
  }

 private:
  static constexpr long long fewEnoughToAskEach = 3, fewEnoughToReadAll = 1000;

  Area enclosing(const std::vector<Place>& places) const {
    const auto [top, bottom] = std::minmax_element(
        places.begin(), places.end(), [](const Place& a, const Place& b) { return a.row < b.row; });
    const auto [left, right] =
        std::minmax_element(places.begin(), places.end(),
                            [](const Place& a, const Place& b) { return a.column < b.column; });
    return {area_.firstRow + top->row, area_.firstColumn + left->column,
            area_.firstRow + bottom->row, area_.firstColumn + right->column};
  }

  std::string textAt(const Place& place) const {
    return toText(Reference<css::text::XTextRange>(cellAt(place), UNO_QUERY_THROW)->getString());
  }

  const Workbook& workbook_;
  const std::string& sheet_;
  const Reference<XCellRange> cells_;
  const Area area_;
};

// Whether a number may be shown as truth. The cell's format tells for certain, but asking for it
// takes long on some sheets.
bool mayBeBoolean(const std::string& text) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return std::none_of(text.begin(), text.end(), isDigit) &&
         std::any_of(text.begin(), text.end(), isWordCharacter);
}

// Calc has no boolean constants: one that a file brings becomes a call of the function.
bool isBooleanConstant(std::string_view formula) {
  return formula == "=TRUE()" || formula == "=FALSE()";
}

bool mayBeFormula(const rtl::OUString& text) {
  return text.startsWith("=") || text.startsWith("{=");
}

// A text that looks like a formula is its own value.
bool isConstant(const std::string& formula, const CellValue& value) {
  if (isBooleanConstant(formula)) return true;
  const auto* const text = std::get_if<std::string>(&value);
  return text != nullptr && *text == formula;
}

constexpr sal_Int32 anyResult = css::sheet::FormulaResult::VALUE |
                                css::sheet::FormulaResult::STRING |
                                css::sheet::FormulaResult::ERROR;

// An error shows as Excel's text for it, whatever Calc calls it in the user's language.
void nameErrors(const Reference<XCellRange>& cells, const Area& area, Grid<std::string>& texts) {
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  std::map<std::string, std::string> names;
  const auto errors = query->queryFormulaCells(css::sheet::FormulaResult::ERROR);
  forEachCell(errors, area, [&](int row, int column) {
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

std::optional<Area> filledPart(const Workbook& workbook, const RangeRef& range) {
  return filledPart(cellsOf(workbook, range.sheet.sheet, firstArea(range)));
}

Grid<CellValue> valuesFrom(const Sequence<Sequence<Any>>& rows, Workbook& workbook,
                           const std::string& sheet, const Area& area,
                           const Reference<XCellRange>& cells) {
  Grid<CellValue> grid = gridFor<CellValue>(area);
  std::vector<Place> errors, possibleBooleans;
  bool emptyTexts = false;
  for (int row = 0; row < rows.getLength() && row < grid.rows; ++row) {
    const Sequence<Any>& values = rows[row];
    for (int column = 0; column < values.getLength() && column < grid.columns; ++column) {
      const Any& value = values[column];
      CellValue& cell = cellAt(grid, row, column);
      double number = 0;
      rtl::OUString text;
      if (value >>= number) {
        cell = number;
        if (number == 0 || number == 1) possibleBooleans.push_back({row, column});
      } else if (value >>= text) {
        cell = toText(text);
        emptyTexts = emptyTexts || text.isEmpty();
      } else {
        errors.push_back({row, column});  // without a value
      }
    }
  }
  if (emptyTexts) {
    const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
    forEachCell(query->queryEmptyCells(), area, [&](int row, int column) {
      const auto* text = std::get_if<std::string>(&cellAt(grid, row, column));
      if (text != nullptr && text->empty()) cellAt(grid, row, column) = Blank{};
    });
  }
  Inquiry inquiry(workbook, sheet, cells, area);
  inquiry.about(
      possibleBooleans,
      [&](const Place& place, const std::string& text) {
        return mayBeBoolean(text) && isBoolean(workbook, inquiry.cellAt(place));
      },
      [&](const Place& place, bool boolean) {
        CellValue& cell = cellAt(grid, place.row, place.column);
        if (boolean) cell = std::get<double>(cell) == 1;
      });
  const auto errorAt = [&](const Place& place) {
    return CellError{errorText(inquiry.cellAt(place)->getError())};
  };
  if (errors.size() == 1) {
    cellAt(grid, errors.front().row, errors.front().column) = errorAt(errors.front());
    return grid;
  }
  inquiry.about(
      errors, [&](const Place& place, const std::string&) { return errorAt(place); },
      [&](const Place& place, const CellError& error) {
        cellAt(grid, place.row, place.column) = error;
      });
  return grid;
}

namespace {

Grid<CellValue> readValues(Workbook& workbook, const std::string& sheet, const Area& area,
                           const Reference<XCellRange>& cells) {
  const Reference<css::sheet::XCellRangeData> source(cells, UNO_QUERY_THROW);
  return valuesFrom(cellData(source), workbook, sheet, area, cells);
}

}  // namespace

Grid<CellValue> readValues(Workbook& workbook, const RangeRef& range) {
  const Area& area = firstArea(range);
  refuseTooMany(area);
  return readValues(workbook, range.sheet.sheet, area, cellsOf(workbook, range.sheet.sheet, area));
}

Grid<CellValue> readFormulas(const Workbook& workbook, const RangeRef& range, ReferenceStyle style,
                             const Grid<CellValue>& values) {
  const Area& area = firstArea(range);
  Grid<CellValue> grid = gridFor<CellValue>(area);
  const Reference<css::sheet::XCellRangeFormula> source(cellsOf(workbook, range.sheet.sheet, area),
                                                        UNO_QUERY_THROW);
  const Sequence<Sequence<rtl::OUString>> rows = source->getFormulaArray();
  FormulaTranslator translator(style, sheetTest(workbook));
  std::string formula;
  for (int row = 0; row < grid.rows; ++row) {
    const Sequence<rtl::OUString>& texts = rows[row];
    for (int column = 0; column < grid.columns; ++column) {
      const CellValue& value = values.at(row, column);
      CellValue& cell = cellAt(grid, row, column);
      if (!mayBeFormula(texts[column])) {
        cell = value;
        continue;
      }
      setText(formula, texts[column]);
      if (isConstant(formula, value)) {
        cell = value;
      } else {
        cell = translator.excelFormula(formula, {area.firstRow + row, area.firstColumn + column});
      }
    }
  }
  return grid;
}

Grid<CellValue> readLocalFormulas(Workbook& workbook, const RangeRef& range) {
  const Area& area = firstArea(range);
  refuseTooMany(area);
  const Reference<XCellRange> cells = cellsOf(workbook, range.sheet.sheet, area);
  Grid<CellValue> grid = readValues(workbook, range.sheet.sheet, area, cells);
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  forEachCell(query->queryFormulaCells(anyResult), area, [&](int row, int column) {
    const Reference<css::beans::XPropertySet> cell(cells->getCellByPosition(column, row),
                                                   UNO_QUERY_THROW);
    rtl::OUString text;
    cell->getPropertyValue("FormulaLocal") >>= text;
    if (isBooleanConstant(toText(cells->getCellByPosition(column, row)->getFormula()))) return;
    if (text.startsWith("{") && text.endsWith("}")) text = text.copy(1, text.getLength() - 2);
    cellAt(grid, row, column) = toText(text);
  });
  return grid;
}

Grid<std::string> readTexts(const Workbook& workbook, const RangeRef& range, Errors errors) {
  const Area& area = firstArea(range);
  const bool several = area.firstRow != area.lastRow || area.firstColumn != area.lastColumn;
  if (several && errors == Errors::none) return bulkTexts(workbook, range.sheet.sheet, area);
  const Reference<XCellRange> cells = cellsOf(workbook, range.sheet.sheet, area);
  Grid<std::string> texts =
      several ? bulkTexts(workbook, range.sheet.sheet, area) : textsOneByOne(cells, area);
  if (errors == Errors::possible) nameErrors(cells, area, texts);
  return texts;
}

}  // namespace quorin::host::calc
