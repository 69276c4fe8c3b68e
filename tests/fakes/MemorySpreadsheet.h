// MemorySpreadsheet: the spreadsheet port from memory, for tests. Its workbooks hold exactly what
// their descriptions say; nothing is recalculated. Evaluation looks in the test's table first and
// computes simple formulas itself. Calls come from one thread; a test may hang and release them
// through the call script from another.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"
#include "tests/fakes/CallScript.h"
#include "tests/fakes/MemoryEvaluator.h"
#include "tests/fakes/MemoryWorkbook.h"
#include "tests/fakes/WorkbookDescription.h"

namespace quorin::fakes {

// What the program around the workbooks is like; tests set it at will.
struct MemoryProgram {
  bool running = true;
  bool frontmost = false;
  bool editing = false;  // a cell is being edited: moves answer -10000
  std::string version = "16.95";
  std::vector<std::optional<host::Bounds>> windows;  // by window number, one a workbook
  int windowRows = 30, windowColumns = 12;           // what a window shows at once
  long long mostCells = 5'000'000;                   // that are read at once; -50 for more
};

class MemorySpreadsheet : public host::Spreadsheet, private FormulaContext {
 public:
  MemorySpreadsheet();

  void open(const WorkbookDescription& description);  // the newest becomes the active workbook
  void close(const std::string& book);
  void setCell(const host::SheetRef& sheet, const CellDescription& cell);
  // What the user does: it can be undone, and the workbook counts as changed.
  void userEnters(const host::SheetRef& sheet, const CellDescription& cell);
  bool userUndoes(const std::string& book);  // false when there is nothing to undo
  // Everything on the sheet goes along, but formulas stay as they are written.
  void userInsertsRows(const host::SheetRef& sheet, int row, int count);
  void userDeletesRows(const host::SheetRef& sheet, int row, int count);
  void userRenamesSheet(const host::SheetRef& sheet, const std::string& name);
  void userCopiesSheet(const host::SheetRef& sheet, const std::string& copy);  // with its marks
  void userCopiesSheetTo(const host::SheetRef& sheet, const host::SheetRef& copy);
  void userDeletesSheet(const host::SheetRef& sheet);
  void userSaves(const std::string& book);
  void userSavesAs(const std::string& book, const std::string& name);
  void userReopens(const std::string& book);  // closed as it is, and opened as it was last saved
  bool isModified(const std::string& book) const;
  void answer(const std::string& expression, host::Evaluation result);  // the table's first say
  // What dependents() gives for a range, in place of what the formulas tell.
  void setDependents(const host::RangeRef& range, std::optional<host::RangeRef> dependents);

  MemoryProgram program;
  CallScript script;

  bool isRunning() override;
  std::string version() override;
  bool isFrontmost() override;
  void activate() override;
  std::vector<std::string> workbooks() override;
  std::vector<std::string> worksheets(const std::string& book) override;
  std::optional<host::Bounds> windowBounds(int index) override;
  std::optional<std::string> activeWorkbook() override;
  std::optional<host::SheetRef> activeSheet() override;
  std::optional<host::RangeRef> activeCell() override;
  std::optional<host::RangeRef> selection() override;
  host::SheetRef activeSheetOf(const std::string& book) override;
  void goTo(const host::RangeRef& range) override;
  void select(const host::RangeRef& range) override;
  void activateWorkbook(const std::string& book) override;
  void activateSheet(const host::SheetRef& sheet) override;
  void activateCell(const host::RangeRef& range) override;
  void scrollTo(const host::RangeRef& range) override;
  std::optional<host::RangeRef> visibleRange() override;
  std::optional<host::RangeRef> named(const host::SheetRef& from, const std::string& name) override;
  std::optional<host::RangeRef> currentRegion(const host::RangeRef& range) override;
  std::optional<host::RangeRef> usedRange(const host::SheetRef& sheet) override;
  std::optional<host::RangeRef> dependents(const host::RangeRef& range,
                                           host::DependentLevels levels) override;
  std::vector<host::DefinedName> definedNames(const std::string& book) override;
  host::Grid<host::CellValue> values(const host::RangeRef& range) override;
  host::Grid<host::CellValue> formulas(const host::RangeRef& range,
                                       host::ReferenceStyle style) override;
  host::Grid<host::CellValue> localFormulas(const host::RangeRef& range) override;
  host::Grid<std::string> displayedTexts(const host::RangeRef& range) override;
  host::Evaluation evaluate(const std::string& expression, const host::SheetRef& from) override;
  std::optional<bool> hidden(const host::RangeRef& range, host::Axis axis) override;
  void setHidden(const host::RangeRef& range, host::Axis axis, bool hidden) override;
  std::optional<host::RangeRef> visibleCells(const host::RangeRef& range) override;
  std::vector<host::FormatCondition> formatConditions(const host::RangeRef& range) override;
  std::string addFormatCondition(const host::RangeRef& range, const std::string& formula) override;
  void setConditionFill(const host::SheetRef& sheet, const std::string& id,
                        const std::optional<host::Color>& fill) override;
  void setConditionPriority(const host::SheetRef& sheet, const std::string& id,
                            int priority) override;
  void setConditionRange(const host::RangeRef& range, const std::string& id) override;
  void deleteCondition(const host::RangeRef& range, const std::string& id) override;
  std::string makeWorkbook() override;
  void setFormula(const host::RangeRef& cell, const std::string& formula) override;
  void closeWorkbook(const std::string& book) override;

 private:
  void enter(const std::string& call, const std::string& detail = {});
  void enterMove(const std::string& call, const std::string& detail);
  MemoryBook* find(const std::string& book) const;
  MemoryBook& bookOf(const std::string& book) const;
  MemorySheet& sheetOf(const host::SheetRef& ref) const;
  MemoryBook& scratchOf(const std::string& book) const;
  void bringForward(const host::SheetRef& ref);
  void userChanged(const std::string& book);
  bool refersTo(const MemoryCell& cell, const host::RangeRef& range) const;
  std::vector<host::Area> directDependents(const host::RangeRef& range) const;
  template <typename T, typename CellToItem>
  host::Grid<T> gridOf(const host::RangeRef& range, CellToItem item) const;

  // What formulas may ask.
  std::optional<host::SheetRef> sheet(const host::SheetRef& from,
                                      const std::optional<std::string>& book,
                                      const std::string& sheet) const override;
  std::optional<host::RangeRef> name(const host::SheetRef& from,
                                     const std::string& name) const override;
  host::Grid<host::CellValue> cells(const host::SheetRef& sheet,
                                    const host::Area& area) const override;

  std::vector<std::unique_ptr<MemoryBook>> books_;  // in the order of opening
  std::map<std::string, MemoryBook> files_;         // what was saved, by name
  MemoryBook* active_ = nullptr;
  int made_ = 0;  // workbooks so far
  std::map<std::string, host::Evaluation> answers_;
  std::vector<std::pair<host::RangeRef, std::optional<host::RangeRef>>> dependents_;
};

}  // namespace quorin::fakes
