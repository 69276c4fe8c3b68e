// Spreadsheet: what Excel's object model needs of the program that holds the workbooks, in plain
// values. One implementation drives LibreOffice Calc, the tests have one in memory.
//
// All calls come from one thread. Workbooks and sheets are named, never held, in the spelling that
// workbooks() and worksheets() give; a name that is not there is SpreadsheetError -1728, a program
// that is not running -600 and one that died during the call -609. Rows and columns are 1-based,
// areas inclusive, at most 1048576 rows and 16384 columns. What an implementation does not offer is
// SpreadsheetError -1708, as "doesn't understand the message" in Excel.
#pragma once

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "kit/value/CallTerms.h"

namespace quorin::host {

// An error with the number that Excel would answer (-1728 no such object, -50 bad parameter,
// -609 the program died, -600 not running, -1743 not allowed, -1712 timed out, -10000 busy).
class SpreadsheetError : public std::runtime_error {
 public:
  SpreadsheetError(int number, const std::string& message)
      : std::runtime_error(message), number_(number) {}
  int number() const { return number_; }

 private:
  int number_;
};

struct Area {
  int firstRow = 1, firstColumn = 1, lastRow = 1, lastColumn = 1;
  bool operator==(const Area&) const = default;
};

struct SheetRef {
  std::string book, sheet;
  bool operator==(const SheetRef&) const = default;
};

// One or more areas of one sheet, in the order given.
struct RangeRef {
  SheetRef sheet;
  std::vector<Area> areas;
  bool operator==(const RangeRef&) const = default;
};

struct Blank {
  bool operator==(const Blank&) const = default;
};

struct CellError {
  std::string text;  // English: "#DIV/0!"
  bool operator==(const CellError&) const = default;
};

using CellValue = std::variant<Blank, bool, double, std::string, CellError>;

// A rectangle of values, row by row.
template <typename T>
struct Grid {
  int rows = 0, columns = 0;
  std::vector<T> cells;
  bool operator==(const Grid&) const = default;
  const T& at(int row, int column) const {  // 0-based
    return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                 static_cast<std::size_t>(column)];
  }
};

struct Bounds {
  double left = 0, top = 0, right = 0, bottom = 0;  // screen points, origin at the top left
};

enum class ReferenceStyle { a1, r1c1 };

enum class DependentLevels { direct, all };

// The result of evaluating an expression: a value, a rectangle of values, or a reference.
using Evaluation = std::variant<CellValue, Grid<CellValue>, RangeRef>;

enum class Axis { rows, columns };

// A name of the workbook, or of one of its sheets.
struct DefinedName {
  std::string name;      // without the sheet
  std::string sheet;     // whose own it is; empty: the workbook's
  std::string refersTo;  // in Excel's grammar, "=Data!$A$1"; what is broken holds #REF!
  bool visible = true;
  bool operator==(const DefinedName&) const = default;
};

struct Color {
  int red = 0, green = 0, blue = 0;  // 0 to 255
  bool operator==(const Color&) const = default;
};

enum class ConditionKind {
  cellValue,
  expression,
  colorScale,
  dataBar,
  top10,
  iconSet,
  uniqueValues,
  text,
  blanks,
  timePeriod,
  aboveAverage,
  noBlanks,
  errors,
  noErrors,
};

// One condition of the conditional formats of a sheet.
struct FormatCondition {
  std::string id;  // names it on its sheet until it is deleted; its form is the spreadsheet's own
  ConditionKind kind = ConditionKind::expression;
  std::string formula;      // the first one, with its "="; empty for a kind that has none
  std::vector<Area> areas;  // where it applies
  int priority = 1;         // 1 comes first; all conditions of a sheet are numbered in one row
  bool stopIfTrue = false;
  std::optional<Color> fill;  // nothing for none, or one that is no plain colour
  bool operator==(const FormatCondition&) const = default;
};

class Spreadsheet {
 public:
  virtual ~Spreadsheet() = default;

  // Around the run of one handler, in which what only the user changes may be read once and kept:
  // which workbooks are open, and their conditions. Without them everything is asked anew. The
  // terms hold until the handler ends. What setHidden() changes may be put off until something else
  // is asked for or the handler ends, which then throws a SpreadsheetError when it fails.
  virtual void handlerBegins(const CallTerms&) {}
  virtual void handlerEnds() {}
  // After that time nobody waits for what the next calls say: work that takes longer ends with
  // -1712. Holds until the handler ends or another time is told.
  virtual void eventBegins(std::chrono::steady_clock::time_point) {}

  virtual bool isRunning() = 0;  // without waiting for the program
  virtual std::string version() = 0;
  virtual bool isFrontmost() = 0;
  virtual void activate() = 0;  // brings the program to the front

  virtual std::vector<std::string> workbooks() = 0;  // the user's, in the order of opening
  virtual std::vector<std::string> worksheets(const std::string& book) = 0;
  // 1-based: 1 is the active workbook's window, then those of the others in the order of opening.
  // Nothing when there is no such window or the system does not tell where it is.
  virtual std::optional<Bounds> windowBounds(int index) = 0;

  // These four give nothing when no workbook is open.
  virtual std::optional<std::string> activeWorkbook() = 0;
  virtual std::optional<SheetRef> activeSheet() = 0;
  virtual std::optional<RangeRef> activeCell() = 0;
  virtual std::optional<RangeRef> selection() = 0;  // of cells, also while a shape is selected
  virtual SheetRef activeSheetOf(const std::string& book) = 0;  // the one on top in its window

  // What moves the selection or the view. All of them: -10000 while a cell is being edited, with
  // the edit left as it is; -50 for a hidden sheet. The range's workbook and sheet become the
  // active ones.
  virtual void goTo(const RangeRef& range) = 0;    // selects it and brings it into view
  virtual void select(const RangeRef& range) = 0;  // the first area's first cell becomes active
  virtual void activateWorkbook(const std::string& book) = 0;
  virtual void activateSheet(const SheetRef& sheet) = 0;
  // Makes the range's first cell the active one; the selection stays when it holds that cell.
  virtual void activateCell(const RangeRef& range) = 0;
  // Scrolls the window so that the range's first cell is its top left one.
  virtual void scrollTo(const RangeRef& range) = 0;
  // What the active window shows, of its pane that scrolls. Nothing when no workbook is open.
  virtual std::optional<RangeRef> visibleRange();

  // Resolves a defined name, in any case, as seen from a sheet: the sheet's own names first, then
  // the workbook's. Nothing when there is none or it is no range.
  virtual std::optional<RangeRef> named(const SheetRef& from, const std::string& name) = 0;
  // The block around the first area that blank rows and columns enclose; a lone cell is its own.
  virtual std::optional<RangeRef> currentRegion(const RangeRef& range) = 0;
  virtual std::optional<RangeRef> usedRange(const SheetRef& sheet) = 0;  // A1 of a blank sheet
  // Cells of the same sheet whose formulas refer to the range, directly or at any distance, as
  // areas in no fixed cut or order; cells of the range among them where they refer to others of it.
  // Nothing when there are none.
  virtual std::optional<RangeRef> dependents(const RangeRef& range, DependentLevels levels) = 0;
  // Sorted by name, sheets' own names included.
  virtual std::vector<DefinedName> definedNames(const std::string& book);

  // Of the first area, in its shape. -50 for more cells than the program can hand over at once.
  virtual Grid<CellValue> values(const RangeRef& range) = 0;  // dates as serial numbers
  // A formula as text beginning with "=", a constant as its value, a blank cell as Blank. English
  // function names, commas, Excel's reference forms.
  virtual Grid<CellValue> formulas(const RangeRef& range, ReferenceStyle style) = 0;
  virtual Grid<CellValue> localFormulas(const RangeRef& range) = 0;  // in the user's own grammar
  virtual Grid<std::string> displayedTexts(const RangeRef& range) = 0;

  // Evaluates Excel formula text without its "=", as seen from a sheet. Text that does not parse
  // gives an error value, most often #NAME?. Leaves no trace in the workbook, its undo list, its
  // modified flag or its view. Functions that are not known to stay inside the workbook are called
  // only where the handler's terms say that the user asked: onlyWhenAsked else.
  virtual Evaluation evaluate(const std::string& expression, const SheetRef& from) = 0;

  // True if the rows or columns that the areas touch are hidden, by the user, a filter or an
  // outline; nothing when some are and some are not.
  virtual std::optional<bool> hidden(const RangeRef& range, Axis axis);
  // Hides or shows all of them. Leaves the undo list and the modified flag as they are.
  virtual void setHidden(const RangeRef& range, Axis axis, bool hidden);
  // The range without its hidden rows and columns, cut into as few areas as that takes, row by row
  // and each row from left to right. Nothing when no cell of it is shown.
  virtual std::optional<RangeRef> visibleCells(const RangeRef& range);

  // The conditions that apply to any cell of the range, by priority.
  virtual std::vector<FormatCondition> formatConditions(const RangeRef& range);
  // A new one of kind `expression` that comes last and has no fill yet; gives its id. This and the
  // next four may refuse the user's own conditions (-10006), and leave the undo list and the
  // modified flag as they are where the program lets them.
  virtual std::string addFormatCondition(const RangeRef& range, const std::string& formula);
  virtual void setConditionFill(const SheetRef& sheet, const std::string& id,
                                const std::optional<Color>& fill);
  // Moves it to that place among the sheet's conditions. A spreadsheet may keep what it made itself
  // above or below the user's whatever the number.
  virtual void setConditionPriority(const SheetRef& sheet, const std::string& id, int priority);
  virtual void setConditionRange(const RangeRef& range,
                                 const std::string& id);  // instead of its own
  // Takes it off the cells of the range; it is gone when it applies to no others.
  virtual void deleteCondition(const RangeRef& range, const std::string& id);

  // Makes a workbook of one blank sheet and gives its name, which has no suffix. Until it is
  // closed, workbooks() lists it, and it is the active one until another is activated. Where the
  // program can hide it, the user sees nothing of it and keeps the view they had.
  virtual std::string makeWorkbook();
  // Writes into a cell of such a workbook (-10006 for any other), as Excel's formula2: text that
  // begins with "=" is a formula, and a result of several cells fills the cells below and beside.
  virtual void setFormula(const RangeRef& cell, const std::string& formula);
  // Closes such a workbook without saving and without asking; -10006 for any other. Where it was
  // active, a workbook of the user's is again.
  virtual void closeWorkbook(const std::string& book);
};

}  // namespace quorin::host
