// ValueMirror: a hidden workbook with the sheets of one of the user's workbooks, in which only
// those cells are filled that an expression looks at, with their present values. So an expression
// costs what it reaches, not what the workbook holds, and the user's workbook is only ever read, in
// pieces between which the user's own work goes on. Nothing in it is older than the last bring().
// Call thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/cells/CellTraits.h"
#include "host/calc/evaluation/FormulaCells.h"
#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/workbook/CallLimits.h"
#include "host/calc/workbook/HiddenWorkbook.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

struct TooManyCells : SpreadsheetError {
  TooManyCells()
      : SpreadsheetError(eventErrors::badParameter, "The expression looks at too many cells") {}
};

class ValueMirror {
 public:
  // `sheets` are the original's, in their order.
  ValueMirror(const css::uno::Reference<css::uno::XComponentContext>& context,
              const Workbook& original, std::vector<std::string> sheets, const CallLimits& limits);
  // Without an original: a workbook of ours of that name, whose own sheets are not filled here.
  // It calculates as `like` does, if there is such a workbook.
  ValueMirror(const css::uno::Reference<css::uno::XComponentContext>& context, std::string book,
              std::vector<std::string> sheets, const Workbook* like);

  bool isOf(const Workbook& original, const std::vector<std::string>& sheets) const;
  Workbook& workbook() { return hidden_.workbook(); }

  // A sheet of its own for formulas, where no reference leads.
  FormulaCells& formulaCells();
  // The sheet that stands for one of another workbook.
  SheetPlace foreignSheet(const SheetRef& sheet);

  // What CELL tells of how that cell looks, whoever's it is; nothing where it cannot be told here.
  std::optional<CellValue> looks(Workbook& theirs, const std::string& kind, const RangeRef& cell);

  // Fills the cells that the expression reaches. TooManyCells when they are too many. What was
  // written when the limits are reached counts for nothing.
  void bring(CalcWorkbooks& workbooks, const Reach& reach, const CallLimits& limits);
  // SpreadsheetError -50 where the cells that were brought make it too much. No text of its own
  // workbook, where that is ours, is longer than that.
  void refuseLongSearches(const OfficeWork& work, double longestOwn = 0) const;
  // Gives it the names of cells and the tables of the original, which text can refer to. After
  // bring().
  void bringNames(const Workbook& original, const CallLimits& limits);
  // A cell well below and to the right of all that is filled.
  std::pair<int, int> freePlace() const;

 private:
  struct Block {
    std::string sheet;  // of the mirror
    Area area;
    Grid<CellValue> values;
    CellTraits traits;
    bool operator==(const Block&) const = default;
  };
  std::vector<RangeRef> wanted(const Reach& reach) const;
  std::string mirrored(const SheetRef& sheet);
  void addSheets(const CallLimits& limits);
  void adoptSettings(const Workbook& original);
  void addSheet(const std::string& name);
  void makeColumns(const std::vector<RangeRef>& reached, const CallLimits& limits);

  HiddenWorkbook hidden_;
  const css::uno::Reference<css::frame::XModel> original_;  // none for a workbook of ours
  const std::string book_;
  const std::vector<std::string> sheets_;
  std::string formulaSheet_;
  std::optional<FormulaCells> formulaCells_;                            // once asked for
  std::map<std::pair<std::string, std::string>, std::string> foreign_;  // by book and sheet
  std::vector<Block> blocks_;           // of which anything may stand there
  bool isWritten_ = true;               // and all that belongs there does
  std::map<std::string, int> columns_;  // by sheet: the last that Calc has a column for, if known
};

}  // namespace quorin::host::calc
