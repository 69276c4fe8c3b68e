#include "host/calc/evaluation/ExpressionScope.h"

#include <algorithm>

#include "host/Address.h"
#include "host/calc/cells/CalcCells.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CalcTables.h"
#include "host/calc/grammar/ExcelTokens.h"
#include "host/calc/grammar/FormulaTranslator.h"
#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/CalcView.h"
#include "kit/value/Unicode.h"

namespace quorin::host::calc {
namespace {

std::string prefixOf(const SheetRef& sheet, const std::string& book) {
  const std::string inside = sheet.book == book ? "" : "[" + sheet.book + "]";
  return excelSheet(inside + sheet.sheet) + "!";
}

// The one workbook of that name, in any case of its letters where none has it exactly.
std::optional<std::string> bookNamed(const std::vector<std::string>& open,
                                     const std::string& name) {
  if (std::count(open.begin(), open.end(), name) == 1) return name;
  const auto same = [&name](const std::string& each) { return caselesslyEqual(each, name); };
  if (std::count_if(open.begin(), open.end(), same) != 1) return std::nullopt;
  return *std::find_if(open.begin(), open.end(), same);
}

// Where the expression counts as typed.
std::optional<FormulaCell> activePlace(CalcWorkbooks& workbooks, const SheetRef& from) {
  const RangeRef cell = activeCellOf(workbooks.windowOf(from.book));
  if (cell.sheet.sheet != from.sheet) return std::nullopt;
  return FormulaCell{cell.areas.front().firstRow, cell.areas.front().firstColumn};
}

// The row that "this row" means.
std::optional<int> activeRow(CalcWorkbooks& workbooks, const SheetRef& from) {
  const auto place = activePlace(workbooks, from);
  return place ? std::optional(place->row) : std::nullopt;
}

}  // namespace

std::string excelText(const RangeRef& range, const std::string& book) {
  return prefixOf(range.sheet, book) + addressText({range.areas.front()});
}

std::optional<SheetRef> findSheet(CalcWorkbooks& workbooks, const std::string& book,
                                  const std::string& sheet) {
  const auto open = bookNamed(workbooks.names(), book);
  if (!open) return std::nullopt;
  for (const std::string& name : workbooks.sheets(*workbooks.named(*open))) {
    if (caselesslyEqual(name, sheet)) return SheetRef{*open, name};
  }
  return std::nullopt;
}

std::optional<Grid<CellValue>> formulasOf(CalcWorkbooks& workbooks, const RangeRef& cells,
                                          const CallLimits& limits) {
  constexpr long long most = 1000;
  if (cellCount(cells.areas) > most) return std::nullopt;
  Workbook& workbook = *workbooks.named(cells.sheet.book);
  return readContents(workbook, cells, ReferenceStyle::a1, limits).formulas;
}

std::string fileNameOf(CalcWorkbooks& workbooks, const SheetRef& sheet) {
  const std::filesystem::path path = pathOfUrl(workbooks.named(sheet.book)->url);
  if (path.empty()) return {};
  const std::string file = "[" + path.filename().string() + "]" + sheet.sheet;
  return (path.parent_path() / file).string();
}

namespace {

// What a name of a workbook means to an expression elsewhere: cells, or a constant. What else it
// may stand for is spelled for its own workbook.
std::optional<std::string> meaningElsewhere(CalcWorkbooks& workbooks, const SheetRef& scope,
                                            const std::string& name, const std::string& book,
                                            const CallLimits& limits) {
  const auto open = bookNamed(workbooks.names(), scope.book);
  if (!open) return std::nullopt;
  const std::shared_ptr<Workbook> workbook = workbooks.named(*open);
  if (const auto range = findNamed(*workbook, scope.sheet, name, limits)) {
    std::string all;
    for (const Area& area : range->areas) {
      all += (all.empty() ? "" : ",") + excelText({range->sheet, {area}}, book);
    }
    return range->areas.size() == 1 ? all : "(" + all + ")";
  }
  const auto content = nameContent(*workbook, scope.sheet, name);
  std::size_t end = 0;
  const bool isText =
      content && content->starts_with('"') && readText(*content, end) && end == content->size();
  return content && (isText || isNumber(*content)) ? content : std::nullopt;
}

std::string tablePartText(CalcWorkbooks& workbooks, const SheetRef& from, const std::string& book,
                          const std::string& table, const TableItems& items,
                          const CallLimits& limits) {
  const auto open = bookNamed(workbooks.names(), book);
  if (!open) return "#REF!";
  const std::shared_ptr<Workbook> workbook = workbooks.named(*open);
  if (!tableArea(*workbook, table, {.all = true}, std::nullopt, limits)) return "#NAME?";
  const bool own = *open == from.book;
  const auto row = items.thisRow && own ? activeRow(workbooks, from) : std::nullopt;
  const auto area = tableArea(*workbook, table, items, row, limits);
  if (area) return excelText(*area, from.book);
  return items.thisRow ? "#VALUE!" : "#REF!";
}

}  // namespace

void lookElsewhere(ExpressionContext& context, CalcWorkbooks& workbooks, const CallLimits& limits) {
  context.workbook = [&workbooks](const std::string& name) {
    return bookNamed(workbooks.names(), name);
  };
  context.meaning = [&workbooks, &limits, book = context.from.book](
                        const SheetRef& scope,
                        const std::string& name) -> std::optional<std::string> {
    if (scope.book == book) return std::nullopt;
    return meaningElsewhere(workbooks, scope, name, book, limits);
  };
  context.tablePart = [&workbooks, &limits, from = context.from](const std::string& book,
                                                                 const std::string& table,
                                                                 const TableItems& items) {
    if (book == from.book) return std::string("#NAME?");
    return tablePartText(workbooks, from, book, table, items, limits);
  };
}

ExpressionContext expressionScope(CalcWorkbooks& workbooks, const SheetRef& from,
                                  std::vector<std::string> sheets, const CallLimits& limits) {
  ExpressionContext context{.from = from, .sheets = std::move(sheets)};
  lookElsewhere(context, workbooks, limits);
  context.here = [&workbooks, from] { return activePlace(workbooks, from); };
  context.meaning = [&workbooks, &limits, from](
                        const SheetRef& scope,
                        const std::string& name) -> std::optional<std::string> {
    if (scope.book != from.book) return meaningElsewhere(workbooks, scope, name, from.book, limits);
    const std::shared_ptr<Workbook> workbook = workbooks.named(scope.book);
    const std::string& sheet = scope.sheet.empty() ? from.sheet : scope.sheet;
    if (const auto content = nameContent(*workbook, sheet, name)) {
      const std::string text = excelFormula("=" + *content, ReferenceStyle::a1, {});
      return text.substr(1);
    }
    const auto table = tableArea(*workbook, name, {.data = true}, std::nullopt, limits);
    return table ? std::optional(excelText(*table, from.book)) : std::nullopt;
  };
  context.tablePart = [&workbooks, &limits, from](const std::string& book, const std::string& table,
                                                  const TableItems& items) {
    return tablePartText(workbooks, from, book, table, items, limits);
  };
  context.formulas = [&workbooks, &limits](const RangeRef& cells) {
    return formulasOf(workbooks, cells, limits);
  };
  context.fileName = [&workbooks](const SheetRef& sheet) { return fileNameOf(workbooks, sheet); };
  return context;
}

}  // namespace quorin::host::calc
