// What the user does in MemorySpreadsheet's workbooks.
#include "host/Address.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin::fakes {

using host::SheetRef;

void MemorySpreadsheet::userEnters(const SheetRef& sheet, const CellDescription& cell) {
  setCell(sheet, cell);
  userChanged(sheet.book);
}

bool MemorySpreadsheet::userUndoes(const std::string& book) {
  int& undoable = bookOf(book).undoable;
  if (undoable == 0) return false;
  --undoable;
  return true;
}

void MemorySpreadsheet::userInsertsRows(const SheetRef& sheet, int row, int count) {
  sheetOf(sheet).insertRows(row, count);
  userChanged(sheet.book);
}

void MemorySpreadsheet::userDeletesRows(const SheetRef& sheet, int row, int count) {
  sheetOf(sheet).deleteRows(row, count);
  userChanged(sheet.book);
}

void MemorySpreadsheet::userRenamesSheet(const SheetRef& sheet, const std::string& name) {
  sheetOf(sheet).name = name;
  userChanged(sheet.book);
}

void MemorySpreadsheet::userCopiesSheet(const SheetRef& sheet, const std::string& copy) {
  userCopiesSheetTo(sheet, {sheet.book, copy});
}

void MemorySpreadsheet::userCopiesSheetTo(const SheetRef& sheet, const SheetRef& copy) {
  MemorySheet made = sheetOf(sheet);
  made.name = copy.sheet;
  bookOf(copy.book).sheets.push_back(std::move(made));
  userChanged(copy.book);
}

void MemorySpreadsheet::userDeletesSheet(const SheetRef& sheet) {
  sheetOf(sheet);
  std::erase_if(bookOf(sheet.book).sheets,
                [&](const MemorySheet& each) { return each.name == sheet.sheet; });
  userChanged(sheet.book);
}

void MemorySpreadsheet::userChanged(const std::string& book) {
  MemoryBook& changed = bookOf(book);
  ++changed.undoable;
  changed.modified = true;
}

void MemorySpreadsheet::userSaves(const std::string& book) {
  MemoryBook& saved = bookOf(book);
  saved.modified = false;
  files_.insert_or_assign(saved.name, saved);
}

void MemorySpreadsheet::userSavesAs(const std::string& book, const std::string& name) {
  bookOf(book).name = name;
  userSaves(name);
}

void MemorySpreadsheet::userReopens(const std::string& book) {
  const MemoryBook& file = files_.at(book);
  close(book);
  active_ = books_.emplace_back(std::make_unique<MemoryBook>(file)).get();
  active_->undoable = 0;
}

}  // namespace quorin::fakes
