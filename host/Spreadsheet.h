// Spreadsheet: what Excel's object model needs of the program that holds the workbooks, in plain
// values. One implementation drives LibreOffice Calc, the tests have one in memory.
//
// All calls come from one thread. Workbooks and sheets are named, never held; a name that is not
// there is SpreadsheetError -1728. Rows and columns are 1-based, areas inclusive.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

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
  const T& at(int row, int column) const {  // 0-based
    return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                 static_cast<std::size_t>(column)];
  }
};

struct Bounds {
  double left = 0, top = 0, right = 0, bottom = 0;  // screen points, origin at the top left
};

enum class ReferenceStyle { a1, r1c1 };

// The result of evaluating an expression: a value, a rectangle of values, or a reference.
using Evaluation = std::variant<CellValue, Grid<CellValue>, RangeRef>;

class Spreadsheet {
 public:
  virtual ~Spreadsheet() = default;

  virtual bool isRunning() = 0;
  virtual std::string version() = 0;
  virtual bool isFrontmost() = 0;
  virtual void activate() = 0;  // brings the program to the front

  virtual std::vector<std::string> workbooks() = 0;  // the user's, in the order of opening
  virtual std::vector<std::string> worksheets(const std::string& book) = 0;
  virtual std::optional<Bounds> windowBounds(int index) = 0;  // 1-based, 1 is the active one

  virtual std::optional<std::string> activeWorkbook() = 0;
  virtual std::optional<SheetRef> activeSheet() = 0;
  virtual std::optional<RangeRef> activeCell() = 0;
  virtual std::optional<RangeRef> selection() = 0;  // of cells, also while a shape is selected

  // Selects the range, on its sheet, and brings it into view. -10000 while a cell is being edited.
  virtual void goTo(const RangeRef& range) = 0;
  virtual void select(const RangeRef& range) = 0;

  // Resolves a defined name as seen from a sheet; nothing when there is none or it is no range.
  virtual std::optional<RangeRef> named(const SheetRef& from, const std::string& name) = 0;
  virtual std::optional<RangeRef> currentRegion(const RangeRef& range) = 0;
  virtual std::optional<RangeRef> usedRange(const SheetRef& sheet) = 0;
  virtual std::optional<RangeRef> directDependents(const RangeRef& range) = 0;

  // Of the first area, in the range's shape.
  virtual Grid<CellValue> values(const RangeRef& range) = 0;  // dates as serial numbers
  // A formula as text beginning with "=", a constant as its value. English function names,
  // commas, Excel's reference forms.
  virtual Grid<CellValue> formulas(const RangeRef& range, ReferenceStyle style) = 0;
  virtual Grid<CellValue> localFormulas(const RangeRef& range) = 0;  // in the user's own grammar
  virtual Grid<std::string> displayedTexts(const RangeRef& range) = 0;

  // Evaluates Excel formula text without its "=", as seen from a sheet. Leaves no trace in the
  // workbook, its undo list, its modified flag or its view.
  virtual Evaluation evaluate(const std::string& expression, const SheetRef& from) = 0;
};

}  // namespace quorin::host
