// CalcExpression: an Excel expression in Calc's own stored grammar, and the cells it looks at. A
// pure function over text, the other way round from FormulaTranslator.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/grammar/OfficeWork.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/TableItems.h"

namespace quorin::host::calc {

// A sheet as the expression will see it: where it is, and what stands for it in Calc's text.
struct SheetPlace {
  SheetRef sheet;
  std::string text;  // "$'My Sheet'"
};

struct ExpressionContext {
  SheetRef from;  // references without a workbook or a sheet belong to it
  // The cell that it belongs to, for "@"; nothing where that is on another sheet.
  std::function<std::optional<FormulaCell>()> here = {};
  // True if the user asked for this very part. Else no function is called that is not known to be
  // harmless: SpreadsheetError onlyWhenAsked.
  bool asked = false;
  // True if the office has a function, by Calc's name. When empty, none that makes a difference.
  std::function<bool(const std::string& function)> knows = {};
  // Called now and then; throws when the work is to end.
  std::function<void()> checkpoint = {};
  // The sheets of that workbook in their order. When empty, every name of a sheet is accepted.
  std::vector<std::string> sheets = {};
  // True if references without a sheet get one. Not for a formula that stands on its own sheet.
  bool qualify = false;
  // A sheet of another workbook; nothing when there is none: the reference is #REF! then.
  std::function<std::optional<SheetPlace>(const std::string& book, const std::string& sheet)>
      elsewhere = {};
  // What a defined name stands for, as Excel text; the sheet is empty when none stands before it.
  // Nothing where there is no such name: it is written as #NAME? then, so that the office looks for
  // nothing by itself.
  std::function<std::optional<std::string>(const SheetRef& scope, const std::string& name)>
      meaning = {};
  // The cells of a part of a table, as Excel text, or the error that it gives.
  std::function<std::string(const std::string& book, const std::string& table,
                            const TableItems& items)>
      tablePart = {};
  // The open workbook of that name, in its own spelling; nothing when there is none.
  std::function<std::optional<std::string>(const std::string& name)> workbook = {};
  // The cells that INDIRECT finds by its argument, as Excel text, empty where it finds none;
  // nothing where only a calculation among all cells can tell.
  std::function<std::optional<std::string>(const std::string& argument)> referent = {};
  // The text of the error that an argument gives, empty for none; nothing where it is not one
  // value. Calc's own ERRORTYPE may tell of another error than the cell would show.
  std::function<std::optional<std::string>(const std::string& argument)> errorOf = {};
  // The value of an argument; nothing where it is not one value.
  std::function<std::optional<CellValue>(const std::string& argument)> valueOf = {};
  // The same; nothing also where there is nobody to ask, or no text of Excel's to ask about.
  std::optional<CellValue> told(const std::string& argument) const {
    return valueOf && !argument.empty() ? valueOf(argument) : std::nullopt;
  }
  // True if it is asked for the numbers that tell which cells of a range are looked at, so that the
  // others are not fetched.
  bool placesAreAsked = false;
  // What Calc's CELL tells of how that one cell looks ("width"); nothing where it cannot be told.
  std::function<std::optional<CellValue>(const std::string& kind, const RangeRef& cell)> looks = {};
  // What stands in the cells, formulas as Excel text; nothing where these are too many.
  std::function<std::optional<Grid<CellValue>>(const RangeRef& cells)> formulas = {};
  // "/folder/[Book.xlsx]Sheet"; empty when the workbook has no file.
  std::function<std::string(const SheetRef& sheet)> fileName = {};
};

// What a formula's result depends on.
struct Reach {
  std::vector<RangeRef> cells;  // one area each
  bool shifts = false;          // and cells at a distance from these (OFFSET)
  bool spans = false;           // and cells between these (A1:INDEX(...))
  bool anywhere = false;        // and cells that a calculation names (INDIRECT)
  bool byText = false;          // by a text of which only the calculation tells what it is
  bool traits = false;          // and on hidden rows, and on which cells are formulas (SUBTOTAL)
  bool contents = false;        // and what only the workbook itself tells (GETPIVOTDATA)
  bool untold = false;          // and what nobody can tell (FORMULATEXT of calculated cells)
};

struct CalcExpression {
  std::string text;  // without "="
  Reach reach;
  bool single = false;   // it gives one value whatever the cells hold; else perhaps several
  OfficeWork work = {};  // what Calc has to do to work it out
};

// Excel text, with or without "=". Commas and semicolons both separate arguments. Nothing when the
// text cannot be an expression: unbalanced brackets or quotes, an operator or an operand missing,
// or something Calc has no notion of (a spill reference A1#). Throws SpreadsheetError -50 where it
// would be too long, too deeply nested or reach too many places with all its names written out: the
// work and the text stay bounded whatever stands in a workbook.
std::optional<CalcExpression> calcExpression(std::string_view excel,
                                             const ExpressionContext& context);

}  // namespace quorin::host::calc
