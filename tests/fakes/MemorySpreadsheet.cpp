#include "tests/fakes/MemorySpreadsheet.h"

#include <algorithm>

namespace quorin::fakes {
namespace {

using host::Area;
using host::RangeRef;
using host::SheetRef;
using host::SpreadsheetError;

Area firstCell(const RangeRef& range) {
  const Area& area = range.areas.front();
  return {area.firstRow, area.firstColumn, area.firstRow, area.firstColumn};
}

}  // namespace

MemorySpreadsheet::MemorySpreadsheet() {
  program.windows = {host::Bounds{0, 25, 1280, 800}};
}

void MemorySpreadsheet::open(const WorkbookDescription& description) {
  active_ = books_.emplace_back(std::make_unique<MemoryBook>(description)).get();
}

void MemorySpreadsheet::close(const std::string& book) {
  std::erase_if(books_, [&](const auto& open) { return sameName(open->name, book); });
  active_ = books_.empty() ? nullptr : books_.back().get();
}

void MemorySpreadsheet::setCell(const SheetRef& sheet, const CellDescription& cell) {
  sheetOf(sheet).set(cell);
}

bool MemorySpreadsheet::isModified(const std::string& book) const {
  return bookOf(book).modified;
}

void MemorySpreadsheet::answer(const std::string& expression, host::Evaluation result) {
  answers_[expression] = std::move(result);
}

void MemorySpreadsheet::setDependents(const RangeRef& range, std::optional<RangeRef> dependents) {
  dependents_.emplace_back(range, std::move(dependents));
}

void MemorySpreadsheet::enter(const std::string& call, const std::string& detail) {
  script.enter(call, detail);
  if (!program.running) throw SpreadsheetError(-600, "Application isn't running.");
}

void MemorySpreadsheet::enterMove(const std::string& call, const std::string& detail) {
  enter(call, detail);
  if (program.editing) throw SpreadsheetError(-10000, "A cell is being edited.");
}

MemoryBook* MemorySpreadsheet::find(const std::string& book) const {
  const auto it = std::find_if(books_.begin(), books_.end(),
                               [&](const auto& open) { return sameName(open->name, book); });
  return it == books_.end() ? nullptr : it->get();
}

MemoryBook& MemorySpreadsheet::bookOf(const std::string& book) const {
  MemoryBook* const found = find(book);
  if (found == nullptr) throw SpreadsheetError(-1728, "workbook not open: " + book);
  return *found;
}

MemorySheet& MemorySpreadsheet::sheetOf(const SheetRef& ref) const {
  MemorySheet* const found = bookOf(ref.book).sheet(ref.sheet);
  if (found == nullptr) throw SpreadsheetError(-1728, "sheet not found: " + ref.sheet);
  return *found;
}

bool MemorySpreadsheet::isRunning() {
  return program.running;
}

std::string MemorySpreadsheet::version() {
  enter("version");
  return program.version;
}

bool MemorySpreadsheet::isFrontmost() {
  enter("isFrontmost");
  return program.frontmost;
}

void MemorySpreadsheet::activate() {
  enter("activate");
  program.frontmost = true;
}

std::vector<std::string> MemorySpreadsheet::workbooks() {
  enter("workbooks");
  std::vector<std::string> names;
  for (const auto& open : books_) names.push_back(open->name);
  return names;
}

std::vector<std::string> MemorySpreadsheet::worksheets(const std::string& book) {
  enter("worksheets", book);
  std::vector<std::string> names;
  for (const MemorySheet& sheet : bookOf(book).sheets) names.push_back(sheet.name);
  return names;
}

std::optional<host::Bounds> MemorySpreadsheet::windowBounds(int index) {
  enter("windowBounds", std::to_string(index));
  const auto number = static_cast<std::size_t>(index);
  if (index < 1 || number > books_.size() || number > program.windows.size()) return std::nullopt;
  return program.windows[number - 1];
}

std::optional<std::string> MemorySpreadsheet::activeWorkbook() {
  enter("activeWorkbook");
  if (active_ == nullptr) return std::nullopt;
  return active_->name;
}

std::optional<SheetRef> MemorySpreadsheet::activeSheet() {
  enter("activeSheet");
  if (active_ == nullptr) return std::nullopt;
  return SheetRef{active_->name, active_->sheets[active_->activeSheet].name};
}

std::optional<RangeRef> MemorySpreadsheet::activeCell() {
  enter("activeCell");
  if (active_ == nullptr) return std::nullopt;
  const MemorySheet& top = active_->sheets[active_->activeSheet];
  return RangeRef{{active_->name, top.name}, {top.activeCell}};
}

std::optional<RangeRef> MemorySpreadsheet::selection() {
  enter("selection");
  if (active_ == nullptr) return std::nullopt;
  const MemorySheet& top = active_->sheets[active_->activeSheet];
  return RangeRef{{active_->name, top.name}, top.selection};
}

SheetRef MemorySpreadsheet::activeSheetOf(const std::string& book) {
  enter("activeSheetOf", book);
  const MemoryBook& found = bookOf(book);
  return {found.name, found.sheets[found.activeSheet].name};
}

void MemorySpreadsheet::bringForward(const SheetRef& ref) {
  const MemorySheet& sheet = sheetOf(ref);
  if (sheet.hidden) throw SpreadsheetError(-50, "The sheet is hidden");
  active_ = &bookOf(ref.book);
  active_->activeSheet = static_cast<std::size_t>(&sheet - active_->sheets.data());
}

void MemorySpreadsheet::goTo(const RangeRef& range) {
  enterMove("goTo", described(range));
  bringForward(range.sheet);
  sheetOf(range.sheet).selection = range.areas;
  sheetOf(range.sheet).activeCell = firstCell(range);
}

void MemorySpreadsheet::select(const RangeRef& range) {
  enterMove("select", described(range));
  bringForward(range.sheet);
  sheetOf(range.sheet).selection = range.areas;
  sheetOf(range.sheet).activeCell = firstCell(range);
}

void MemorySpreadsheet::activateWorkbook(const std::string& book) {
  enterMove("activateWorkbook", book);
  active_ = &bookOf(book);
}

void MemorySpreadsheet::activateSheet(const SheetRef& sheet) {
  enterMove("activateSheet", described(sheet));
  bringForward(sheet);
}

void MemorySpreadsheet::activateCell(const RangeRef& range) {
  enterMove("activateCell", described(range));
  bringForward(range.sheet);
  MemorySheet& sheet = sheetOf(range.sheet);
  sheet.activeCell = firstCell(range);
  if (!overlaps(sheet.selection, sheet.activeCell)) sheet.selection = {sheet.activeCell};
}

void MemorySpreadsheet::scrollTo(const RangeRef& range) {
  enterMove("scrollTo", described(range));
  bringForward(range.sheet);
  MemorySheet& sheet = sheetOf(range.sheet);
  sheet.topRow = firstCell(range).firstRow;
  sheet.leftColumn = firstCell(range).firstColumn;
}

}  // namespace quorin::fakes
