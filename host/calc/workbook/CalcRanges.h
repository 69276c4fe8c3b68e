// Between the port's ranges and UNO's.
#pragma once

#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/table/CellRangeAddress.hpp>
#include <com/sun/star/table/XCellRange.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/FormulaTranslator.h"
#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

// SpreadsheetError -1728 when the workbook has no such sheet.
css::uno::Reference<css::sheet::XSpreadsheet> sheetOf(const Workbook& workbook,
                                                      const std::string& name);
SpreadsheetError noSuchSheet(const std::string& name);

// The names of the sheets in their order, hidden ones included.
std::vector<std::string> sheetNames(const Workbook& workbook);
// The same without those that have none: undoing from outside in a workbook that is not in front
// leaves such sheets in the one that is. The office finds no sheet by no name, so they are not
// there for whoever asks by name.
std::vector<std::string> namedSheets(const Workbook& workbook);
std::vector<std::string> withoutNameless(std::vector<std::string> sheets);

// The sheets themselves, in their order.
std::vector<css::uno::Reference<css::sheet::XSpreadsheet>> sheetsOf(const Workbook& workbook);

// Tells whether a sheet of the workbook, which has to outlive it, has a name. Asks when first
// asked.
IsSheet sheetTest(const Workbook& workbook);

// Formulas of any result, for XCellRangesQuery::queryFormulaCells.
constexpr sal_Int32 anyResult = css::sheet::FormulaResult::VALUE |
                                css::sheet::FormulaResult::STRING |
                                css::sheet::FormulaResult::ERROR;

Area areaOf(const css::table::CellRangeAddress& address);
css::uno::Reference<css::table::XCellRange> cellsOf(
    const css::uno::Reference<css::sheet::XSpreadsheet>& sheet, const Area& area);
// Not in one call by their address: Calc ends when a workbook that was closed is asked so.
css::uno::Reference<css::table::XCellRange> cellsOf(const Workbook& workbook,
                                                    const std::string& sheet, const Area& area);

// What stands in the cells, which are those of the area: formulas with their "=", in Calc's
// grammar. Always as many as the area has: where the user deleted some of them meanwhile, the
// office tells fewer, and those that are missing are empty.
css::uno::Sequence<css::uno::Sequence<rtl::OUString>> formulasOf(
    const css::uno::Reference<css::table::XCellRange>& cells, const Area& area);

// "$'My Sheet'.$A$1:$B$2"
std::string calcAddress(const std::string& sheet, const Area& area);

// What a selection, a query or a name gave: a cell, a range, or several. Nothing for anything else
// and for no cells at all.
std::optional<RangeRef> rangeOf(const Workbook& workbook,
                                const css::uno::Reference<css::uno::XInterface>& cells);

// The first area; -50 when there is none.
const Area& firstArea(const RangeRef& range);

}  // namespace quorin::host::calc
