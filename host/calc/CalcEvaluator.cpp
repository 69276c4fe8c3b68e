#include "host/calc/CalcEvaluator.h"

#include <algorithm>
#include <com/sun/star/sheet/XArrayFormulaRange.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <com/sun/star/util/XProtectable.hpp>

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "host/calc/CalcCells.h"
#include "host/calc/CalcLookup.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/ConstantExpression.h"
#include "host/calc/ReferenceText.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::table::XCellRange;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr int mostResultCells = 200'000;
constexpr const char* scratchSheet = "quorin scratch";

// Cells that hold one array formula, and are blank again afterwards.
class Scratch {
 public:
  Scratch(const Reference<css::sheet::XSpreadsheet>& sheet, HiddenClone::Place place, int rows,
          int columns)
      : area_{place.row, place.column, place.row + rows - 1, place.column + columns - 1},
        cells_(cellsOf(sheet, area_)) {}
  ~Scratch() {
    try {  // formats too: a boolean result leaves one behind
      constexpr sal_Int32 everything = 1023;
      Reference<css::sheet::XSheetOperation>(cells_, UNO_QUERY_THROW)->clearContents(everything);
    } catch (const css::uno::Exception&) {
      // The clone is gone, and with it what stood there.
    }
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  Grid<CellValue> values(Workbook& workbook, const std::string& formula) const {
    Reference<css::sheet::XArrayFormulaRange>(cells_, UNO_QUERY_THROW)
        ->setArrayFormula(toUno(formula));
    return readValues(workbook, cells_, area_);
  }

 private:
  const Area area_;
  const Reference<XCellRange> cells_;
};

// The number that ROWS or COLUMNS gave; 1 where the expression is no array.
int sizeFrom(const Grid<CellValue>& result) {
  const auto* number = std::get_if<double>(&result.cells.front());
  if (number == nullptr || *number < 1) return 1;
  return static_cast<int>(std::min<double>(*number, maxRow));
}

}  // namespace

std::optional<RangeRef> CalcEvaluator::asReference(CalcWorkbooks& workbooks,
                                                   const std::string& expression,
                                                   const SheetRef& from) {
  std::string_view text = expression;
  const auto trim = [&text] {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  };
  trim();
  if (text.starts_with('=')) text.remove_prefix(1);
  trim();
  if (text.starts_with('(') && text.find(')') == text.size() - 1) {
    text = text.substr(1, text.size() - 2);
  }
  const auto split = splitSheetPrefix(text);
  if (!split || split->rest.empty()) return std::nullopt;
  SheetRef sheet{split->book.value_or(from.book), split->sheet.value_or(from.sheet)};
  const std::vector<std::string> books = workbooks.names();
  if (std::find(books.begin(), books.end(), sheet.book) == books.end()) return std::nullopt;
  const std::shared_ptr<Workbook> held = workbooks.named(sheet.book);
  const Workbook& workbook = *held;
  bool known = false;
  for (const std::string& name : sheetNames(workbook)) {
    if (upperCase(name) != upperCase(sheet.sheet)) continue;
    sheet.sheet = name;
    known = true;
  }
  if (!known) return std::nullopt;
  if (const auto areas = parseA1(split->rest)) return RangeRef{sheet, *areas};
  const bool word = std::all_of(split->rest.begin(), split->rest.end(), isWordCharacter);
  return word ? findNamed(workbook, sheet.sheet, std::string(split->rest)) : std::nullopt;
}

Evaluation CalcEvaluator::evaluate(CalcWorkbooks& workbooks, const std::string& expression,
                                   const SheetRef& from) {
  const std::shared_ptr<Workbook> original = workbooks.named(from.book);
  sheetOf(*original, from.sheet);
  if (const auto reference = asReference(workbooks, expression, from)) return *reference;
  if (isConstantExpression(expression)) {  // no reason to copy a large workbook
    const auto text = calcExpression(expression, {from.book, {}});
    if (!text) return CellValue(CellError{"#NAME?"});
    if (!empty_) empty_ = std::make_unique<HiddenClone>(context_);
    return inClone(*empty_, *text, sheetNames(empty_->workbook()).front());
  }
  if (!clone_ || !clone_->isOf(*original)) {
    clone_.reset();
    clone_ = std::make_unique<HiddenClone>(context_, *original);
  }
  ExpressionContext context{from.book, [&](const std::string& book) -> std::optional<std::string> {
                              for (const Window& window : workbooks.windows()) {
                                const Workbook& other = *window.workbook;
                                if (other.name == book && !other.url.empty()) return other.url;
                              }
                              return std::nullopt;
                            }};
  std::string sheet = from.sheet;
  const Reference<css::util::XProtectable> protection(sheetOf(clone_->workbook(), sheet),
                                                      UNO_QUERY_THROW);
  if (protection->isProtected()) {  // its cells cannot be used, so another sheet looks at it
    context.sheet = sheet;
    sheet = scratchSheet;
    const Reference<css::sheet::XSpreadsheets> sheets(clone_->workbook().sheets, UNO_QUERY_THROW);
    if (!sheets->hasByName(toUno(scratchSheet))) {
      sheets->insertNewByName(toUno(scratchSheet),
                              static_cast<sal_Int16>(sheets->getElementNames().getLength()));
    }
  }
  const auto text = calcExpression(expression, context);
  if (!text) return CellValue(CellError{"#NAME?"});
  return inClone(*clone_, *text, sheet);
}

Evaluation CalcEvaluator::inClone(HiddenClone& clone, const std::string& text,
                                  const std::string& sheetName) {
  Workbook& workbook = clone.workbook();
  const Reference<css::sheet::XSpreadsheet> sheet = sheetOf(workbook, sheetName);
  const HiddenClone::Place place = clone.freePlace(sheetName);
  const auto single = [&](const std::string& formula) {
    return Scratch(sheet, place, 1, 1).values(workbook, formula);
  };
  const int rows = sizeFrom(single("=ROWS(" + text + ")"));
  const int columns = sizeFrom(single("=COLUMNS(" + text + ")"));
  if (rows == 1 && columns == 1) return single("=" + text).cells.front();
  if (static_cast<long long>(rows) * columns > mostResultCells) {
    throw SpreadsheetError(-50, "The result has too many cells");
  }
  return Scratch(sheet, place, rows, columns).values(workbook, "=" + text);
}

}  // namespace quorin::host::calc
