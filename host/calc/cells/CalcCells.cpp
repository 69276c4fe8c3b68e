#include "host/calc/cells/CalcCells.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <map>
#include <optional>
#include <string_view>

#include "host/Address.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/BooleanFormats.h"
#include "host/calc/cells/CalcTexts.h"
#include "host/calc/grammar/CellErrors.h"
#include "host/calc/grammar/FormulaTranslator.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/uno/CellData.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::table::XCellRange;
using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;

struct Place {
  int row, column;  // 0-based, in the grid
};

// Asks a question of cells of one rectangle, but only once for all those that look alike: their
// displayed texts come in one call, whatever language they are in.
class Inquiry {
 public:
  Inquiry(const Workbook& workbook, const std::string& sheet, const Reference<XCellRange>& cells,
          const Area& area, const CallLimits& limits)
      : workbook_(workbook), sheet_(sheet), cells_(cells), area_(area), limits_(limits) {}

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
                           : std::optional(bulkTexts(workbook_, sheet_, around, limits_));
    for (const Place& place : places) {
      limits_.check();
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
  const CallLimits& limits_;
};

// True if a number may be shown as truth. The cell's format tells for certain, but asking for it
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

// Nor errors: it keeps a constant of a file as a formula. #REF! alone is more often what is left of
// a formula whose cells are gone, which an auditor has to see.
bool isErrorConstant(std::string_view formula) {
  return formula.size() > 1 && formula != "=#REF!" &&
         errorLiteral(formula, 1).size() == formula.size() - 1;
}

// A text that looks like a formula is its own value.
bool isConstant(const std::string& formula, const CellValue& value) {
  if (isBooleanConstant(formula) || isErrorConstant(formula)) return true;
  const auto* const text = std::get_if<std::string>(&value);
  return text != nullptr && *text == formula;
}

}  // namespace

Grid<CellValue> valuesFrom(const Sequence<Sequence<Any>>& rows, Workbook& workbook,
                           const std::string& sheet, const Area& area,
                           const Reference<XCellRange>& cells, const CallLimits& limits) {
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
  Inquiry inquiry(workbook, sheet, cells, area, limits);
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

using Sheet = Reference<css::sheet::XSpreadsheet>;

Grid<CellValue> readPiece(Workbook& workbook, const std::string& name, const Sheet& sheet,
                          const Area& area, const CallLimits& limits) {
  const Reference<XCellRange> cells = cellsOf(sheet, area);
  const Reference<css::sheet::XCellRangeData> source(cells, UNO_QUERY_THROW);
  return valuesFrom(cellData(source), workbook, name, area, cells, limits);
}

// The formulas of a piece of the area, in their places among the values. Gives the bytes of text
// that the office told for them.
std::size_t readPiece(const Sheet& sheet, const Area& area, const Area& piece,
                      FormulaTranslator& translator, TextRoom& room, Grid<CellValue>& grid,
                      const CallLimits& limits) {
  const Sequence<Sequence<rtl::OUString>> rows = formulasOf(cellsOf(sheet, piece), piece);
  std::string formula;
  std::size_t told = 0;
  for (int row = piece.firstRow; row <= piece.lastRow; ++row) {
    const Sequence<rtl::OUString>& texts = rows[row - piece.firstRow];
    for (int column = piece.firstColumn; column <= piece.lastColumn; ++column) {
      const rtl::OUString& text = texts[column - piece.firstColumn];
      told += static_cast<std::size_t>(text.getLength()) * sizeof(sal_Unicode);
      if (!mayBeFormula(text)) continue;
      limits.check();
      CellValue& cell = cellAt(grid, row - area.firstRow, column - area.firstColumn);
      setText(formula, text);
      if (isConstant(formula, cell)) continue;
      std::string written = translator.excelFormula(formula, {row, column});
      room.take(written.size());
      cell = std::move(written);
    }
  }
  return told;
}

// Goes on where a reading of the same sheet has ended: what is read is the same, however much of it
// at once.
Grid<CellValue> readValues(Workbook& workbook, const Sheet& sheet, const RangeRef& range,
                           const CallLimits& limits) {
  const Area& area = firstArea(range);
  const bool tells = cellCount({area}) >= cellsOfFirstPiece;  // of how long the next texts are
  PieceSizes sizes;
  if (workbook.shortTextsOn == range.sheet.sheet) sizes.next = sizes.most;
  if (tells) workbook.shortTextsOn.clear();
  Grid<CellValue> values = readInPieces<CellValue>(area, limits, sizes, [&](const Area& piece) {
    return readPiece(workbook, range.sheet.sheet, sheet, piece, limits);
  });
  if (tells && sizes.next == sizes.most) workbook.shortTextsOn = range.sheet.sheet;
  return values;
}

Grid<CellValue> readFormulas(const Workbook& workbook, const Sheet& sheet, const Area& area,
                             ReferenceStyle style, Grid<CellValue> values,
                             const CallLimits& limits) {
  FormulaTranslator translator(style, sheetTest(workbook));
  TextRoom room;
  PieceSizes sizes{cellsOfPiece, cellsOfPiece};
  inPieces(area, limits, sizes, [&](const Area& piece) {
    return readPiece(sheet, area, piece, translator, room, values, limits);
  });
  return values;
}

}  // namespace

Grid<CellValue> readValues(Workbook& workbook, const RangeRef& range, const CallLimits& limits) {
  return readValues(workbook, sheetOf(workbook, range.sheet.sheet), range, limits);
}

CellContents readContents(Workbook& workbook, const RangeRef& range, ReferenceStyle style,
                          const CallLimits& limits) {
  const Sheet sheet = sheetOf(workbook, range.sheet.sheet);
  CellContents contents;
  contents.values = readValues(workbook, sheet, range, limits);
  contents.formulas =
      readFormulas(workbook, sheet, firstArea(range), style, contents.values, limits);
  return contents;
}

Grid<CellValue> readLocalFormulas(Workbook& workbook, const RangeRef& range,
                                  const CallLimits& limits) {
  const Area& area = firstArea(range);
  Grid<CellValue> grid = readValues(workbook, range, limits);
  const Reference<XCellRange> cells = cellsOf(workbook, range.sheet.sheet, area);
  const Reference<css::sheet::XCellRangesQuery> query(cells, UNO_QUERY_THROW);
  TextRoom room;
  forEachCell(query->queryFormulaCells(anyResult), area, [&](int row, int column) {
    limits.check();
    const Reference<css::beans::XPropertySet> cell(cells->getCellByPosition(column, row),
                                                   UNO_QUERY_THROW);
    rtl::OUString text;
    cell->getPropertyValue("FormulaLocal") >>= text;
    const std::string stored = toText(cells->getCellByPosition(column, row)->getFormula());
    if (isBooleanConstant(stored) || isErrorConstant(stored)) return;
    if (text.startsWith("{") && text.endsWith("}")) text = text.copy(1, text.getLength() - 2);
    std::string written = toText(text);
    room.take(written.size());
    cellAt(grid, row, column) = std::move(written);
  });
  return grid;
}

}  // namespace quorin::host::calc
