// The workbooks inside MemorySpreadsheet: cells, names, hidden lines, format conditions and what is
// selected and in view on each sheet.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"
#include "tests/fakes/WorkbookDescription.h"

namespace quorin::fakes {

struct MemoryCell {
  host::CellValue value;
  std::string formula, localFormula;  // empty for a constant
  std::string text;
  std::pair<int, int> spilledFrom = {0, 0};  // the cell whose result reaches here; 0 for none
};

struct MemorySheet {
  std::string name;
  std::map<std::pair<int, int>, MemoryCell> cells;  // by row and column; no blank ones
  std::vector<host::Area> selection = {{1, 1, 1, 1}};
  host::Area activeCell = {1, 1, 1, 1};
  bool hidden = false;
  std::set<int> hiddenRows, hiddenColumns;
  int topRow = 1, leftColumn = 1;                 // of the window
  std::vector<host::FormatCondition> conditions;  // by priority, numbered by their place
  int nextCondition = 1;

  const MemoryCell* at(int row, int column) const;
  void set(const CellDescription& cell);
  host::Area usedArea() const;
  host::Area regionAround(host::Area area) const;
  // What is left of an area without its hidden rows and columns, row by row.
  std::vector<host::Area> shownParts(const host::Area& area) const;
  void addCondition(host::ConditionKind kind, std::string formula, std::vector<host::Area> areas);
  host::FormatCondition& condition(const std::string& id);  // -1728 when there is none
  void putCondition(const std::string& id, std::size_t place);
  void removeCondition(const std::string& id);
  // Areas of conditions grow where rows come within them; without any area a condition is gone.
  void insertRows(int row, int count);
  void deleteRows(int row, int count);

 private:
  bool hasCellIn(const host::Area& area) const;
  void numberConditions();
  template <typename RowNow>
  void moveRows(RowNow now);
};

struct MemoryBook {
  explicit MemoryBook(const WorkbookDescription& description);
  MemorySheet* sheet(const std::string& sheetName);  // in any case; a null pointer when unknown

  std::string name;
  std::vector<MemorySheet> sheets;
  std::vector<NameDescription> names;
  std::size_t activeSheet = 0;
  bool scratch = false;  // made by the program's caller
  int undoable = 0;      // changes of the user's that can be undone
  bool modified = false;
};

std::string described(const host::SheetRef& sheet);  // "[Known.xlsx]Data!"
std::string described(const host::RangeRef& range);  // "[Known.xlsx]Data!$A$1"

bool overlaps(const std::vector<host::Area>& areas, const host::Area& area);

// ASCII letters in any case.
bool sameName(const std::string& a, const std::string& b);

}  // namespace quorin::fakes
