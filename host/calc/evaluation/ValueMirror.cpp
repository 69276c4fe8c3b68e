#include "host/calc/evaluation/ValueMirror.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XSheetOperation.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <span>

#include "host/Address.h"
#include "host/calc/cells/AreaGrid.h"
#include "host/calc/cells/CalcCells.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CellWriter.h"
#include "host/calc/evaluation/CellLooks.h"
#include "host/calc/evaluation/MirrorNames.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr long long mostCellsReached = 1'000'000;
constexpr int cellsAtOnce = 10'000;     // the office does nothing else for these
constexpr long long fewCells = 2'000;   // not worth asking which of them are filled
constexpr sal_Int32 everything = 1023;  // contents and formats of every kind
const Area wholeSheet{1, 1, maxRow, maxColumn};

bool contains(const RangeRef& outer, const RangeRef& inner) {
  return outer.sheet == inner.sheet &&
         intersection(outer.areas.front(), inner.areas.front()) == inner.areas.front();
}

Area hull(const Area& a, const Area& b) {
  return {std::min(a.firstRow, b.firstRow), std::min(a.firstColumn, b.firstColumn),
          std::max(a.lastRow, b.lastRow), std::max(a.lastColumn, b.lastColumn)};
}

// Few areas that together hold all the parts, and not much more: where one would be mostly blank it
// is cut at the widest gap, of several the one in the middle, so that it goes down few steps.
void cover(std::vector<Area> parts, std::vector<Area>& found) {
  constexpr long long worthACall = 500;
  if (parts.empty()) return;
  Area all = parts.front();
  for (const Area& part : parts) all = hull(all, part);
  if (parts.size() == 1 || cellCount({all}) <= 2 * cellCount(parts) + worthACall) {
    found.push_back(all);
    return;
  }
  std::size_t cut = 0;
  int widest = -1;
  Axis along = Axis::rows;
  const auto sortAlong = [&parts](Axis axis) {
    std::sort(parts.begin(), parts.end(),
              [axis](const Area& a, const Area& b) { return firstOn(a, axis) < firstOn(b, axis); });
  };
  const auto fromMiddle = [middle = parts.size() / 2](std::size_t at) {
    return at > middle ? at - middle : middle - at;
  };
  for (const Axis axis : {Axis::rows, Axis::columns}) {
    sortAlong(axis);
    int reached = lastOn(parts.front(), axis);
    for (std::size_t i = 1; i < parts.size(); ++i) {
      const int gap = firstOn(parts[i], axis) - reached - 1;
      if (gap > widest || (gap == widest && axis == along && fromMiddle(i) < fromMiddle(cut))) {
        widest = gap;
        cut = i;
        along = axis;
      }
      reached = std::max(reached, lastOn(parts[i], axis));
    }
  }
  if (widest < 0) {  // nothing to cut between
    found.push_back(all);
    return;
  }
  sortAlong(along);
  const auto middle = parts.begin() + static_cast<std::ptrdiff_t>(cut);
  cover({parts.begin(), middle}, found);
  cover({middle, parts.end()}, found);
}

}  // namespace

ValueMirror::ValueMirror(const Reference<css::uno::XComponentContext>& context,
                         const Workbook& original, std::vector<std::string> sheets,
                         const CallLimits& limits)
    : hidden_(context),
      original_(original.model),
      book_(original.name),
      sheets_(std::move(sheets)) {
  adoptSettings(original);
  addSheets(limits);
}

ValueMirror::ValueMirror(const Reference<css::uno::XComponentContext>& context, std::string book,
                         std::vector<std::string> sheets, const Workbook* like)
    : hidden_(context), book_(std::move(book)), sheets_(std::move(sheets)) {
  if (like != nullptr) adoptSettings(*like);
  addSheets(CallLimits());
}

void ValueMirror::addSheets(const CallLimits& limits) {
  formulaSheet_ = "quorin";
  while (std::find(sheets_.begin(), sheets_.end(), formulaSheet_) != sheets_.end()) {
    formulaSheet_ += " quorin";
  }
  const std::string first = sheetNames(workbook()).front();
  const Reference<css::container::XNamed> only(sheetOf(workbook(), first), UNO_QUERY_THROW);
  only->setName(toUno(sheets_.front()));
  for (std::size_t i = 1; i < sheets_.size(); ++i) {
    limits.check();
    addSheet(sheets_[i]);
  }
  addSheet(formulaSheet_);
}

void ValueMirror::addSheet(const std::string& name) {
  const Reference<css::sheet::XSpreadsheets> sheets(workbook().sheets, UNO_QUERY_THROW);
  sheets->insertNewByName(toUno(name), std::numeric_limits<sal_Int16>::max());
}

// What a calculation depends on beside the cells.
void ValueMirror::adoptSettings(const Workbook& original) {
  const Reference<XPropertySet> from(original.document, UNO_QUERY_THROW),
      to(workbook().document, UNO_QUERY_THROW);
  for (const char* name : {"NullDate", "IgnoreCase", "CalcAsShown", "MatchWholeCell",
                           "RegularExpressions", "Wildcards", "LookUpLabels", "StandardDecimals"}) {
    const rtl::OUString property = rtl::OUString::createFromAscii(name);
    to->setPropertyValue(property, from->getPropertyValue(property));
  }
  // How text is read as a reference.
  const auto settings = [](const Reference<css::uno::XInterface>& document) {
    const Reference<css::lang::XMultiServiceFactory> factory(document, UNO_QUERY_THROW);
    return Reference<XPropertySet>(factory->createInstance("com.sun.star.document.Settings"),
                                   UNO_QUERY_THROW);
  };
  const Any syntax = settings(original.document)->getPropertyValue("SyntaxStringRef");
  if (syntax.hasValue()) settings(workbook().document)->setPropertyValue("SyntaxStringRef", syntax);
}

bool ValueMirror::isOf(const Workbook& original, const std::vector<std::string>& sheets) const {
  return original_ == original.model && book_ == original.name && sheets_ == sheets;
}

FormulaCells& ValueMirror::formulaCells() {
  if (!formulaCells_) formulaCells_.emplace(workbook(), formulaSheet_, 1, 1);
  return *formulaCells_;
}

SheetPlace ValueMirror::foreignSheet(const SheetRef& sheet) {
  if (sheet.book == book_) return {sheet, calcSheet(sheet.sheet)};  // named in another case
  const auto [entry, isNew] = foreign_.try_emplace({sheet.book, sheet.sheet});
  if (isNew) {
    entry->second = formulaSheet_ + " " + std::to_string(foreign_.size());
    addSheet(entry->second);
  }
  return {sheet, calcSheet(entry->second)};
}

std::string ValueMirror::mirrored(const SheetRef& sheet) {
  if (sheet.book == book_) return sheet.sheet;
  return foreign_.at({sheet.book, sheet.sheet});
}

std::optional<CellValue> ValueMirror::looks(Workbook& theirs, const std::string& kind,
                                            const RangeRef& cell) {
  return cellLooks(formulaCells(), workbook(), formulaSheet_, theirs, cell, kind);
}

// The areas to read, as the expression has them and grown by what its functions add to them.
std::vector<RangeRef> ValueMirror::wanted(const Reach& reach) const {
  std::vector<RangeRef> areas;
  for (const RangeRef& range : reach.cells) {
    if (original_.is() || range.sheet.book != book_) areas.push_back(range);
  }
  if (reach.anywhere && original_.is()) {
    for (const std::string& sheet : sheets_) areas.push_back({{book_, sheet}, {wholeSheet}});
  }
  for (RangeRef& area : areas) {
    if (reach.shifts) area.areas = {wholeSheet};
    if (!reach.spans) continue;
    for (const RangeRef& other : areas) {
      if (other.sheet == area.sheet) {
        area.areas = {hull(area.areas.front(), other.areas.front())};
      }
    }
  }
  std::vector<RangeRef> distinct;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const bool covered = std::any_of(areas.begin(), areas.end(), [&](const RangeRef& other) {
      const auto position = static_cast<std::size_t>(&other - areas.data());
      return position != i && contains(other, areas[i]) &&
             (position < i || !contains(areas[i], other));
    });
    if (!covered) distinct.push_back(areas[i]);
  }
  return distinct;
}

// Calc has columns as far as anything has ever stood in one, and counts in the last of them, for
// some functions, where a range begins behind it.
void ValueMirror::makeColumns(const std::vector<RangeRef>& reached, const CallLimits& limits) {
  for (const RangeRef& range : reached) {
    const std::string sheet = mirrored(range.sheet);
    const int first = firstArea(range).firstColumn;
    int& last = columns_[sheet];
    if (first <= last) continue;
    limits.check();
    cellsOf(workbook(), sheet, {1, first, 1, first})->getCellByPosition(0, 0)->setFormula({});
    last = first;
  }
}

void ValueMirror::bring(CalcWorkbooks& workbooks, const Reach& reach, const CallLimits& limits) {
  const std::vector<RangeRef> reached = wanted(reach);
  makeColumns(reached, limits);
  std::vector<RangeRef> areas;
  long long cells = 0;
  for (const RangeRef& range : reached) {
    limits.check();
    std::vector<Area> filled = range.areas;
    if (cellCount(range.areas) > fewCells) {
      const Area& area = firstArea(range);
      filled = findFilledParts(cellsOf(*workbooks.named(range.sheet.book), range.sheet.sheet, area),
                               area);
    }
    cells += cellCount(filled);
    if (cells > mostCellsReached) throw TooManyCells();
    std::vector<Area> covering;
    cover(std::move(filled), covering);
    for (const Area& area : covering) areas.push_back({range.sheet, {area}});
  }
  std::vector<Block> blocks;
  TextRoom room;
  for (const RangeRef& range : areas) {
    for (const Area& piece : piecesOf(range.areas.front(), cellsAtOnce)) {
      limits.check();
      const std::shared_ptr<Workbook> source = workbooks.named(range.sheet.book);
      const RangeRef part{range.sheet, {piece}};
      blocks.push_back({mirrored(range.sheet), piece, readValues(*source, part, limits),
                        reach.traits ? readTraits(*source, part, limits) : CellTraits()});
      room.take(blocks.back().values);
    }
  }
  if (isWritten_ && blocks == blocks_) return;
  isWritten_ = false;
  while (!blocks_.empty()) {
    const Block& old = blocks_.back();
    limits.check();
    Reference<css::sheet::XSheetOperation>(cellsOf(workbook(), old.sheet, old.area),
                                           UNO_QUERY_THROW)
        ->clearContents(everything);
    hideRows(workbook(), old.sheet, old.traits.hiddenRows, false, limits);
    blocks_.pop_back();
  }
  for (Block& each : blocks) {
    limits.check();
    blocks_.push_back(std::move(each));
    const Block& block = blocks_.back();
    writeValues(sheetOf(workbook(), block.sheet), block.area, block.values, block.traits.kinds);
    hideRows(workbook(), block.sheet, block.traits.hiddenRows, true, limits);
  }
  isWritten_ = true;
}

void ValueMirror::refuseLongSearches(const OfficeWork& work, double longestOwn) const {
  double longest = longestOwn;
  const auto read = work.isOfTexts() ? blocks_.begin() : blocks_.end();
  for (const Block& block : std::span(read, blocks_.end())) {
    for (const CellValue& value : block.values.cells) {
      const auto* text = std::get_if<std::string>(&value);
      if (text != nullptr) longest = std::max(longest, static_cast<double>(text->size()));
    }
  }
  const auto filled = [this](const RangeRef& cells) {
    if (!original_.is() && cells.sheet.book == book_)
      return static_cast<double>(cellCount(cells.areas));
    const auto foreign = foreign_.find({cells.sheet.book, cells.sheet.sheet});
    const std::string& sheet = foreign != foreign_.end() ? foreign->second : cells.sheet.sheet;
    double count = 0;
    for (const Block& block : blocks_) {
      if (block.sheet != sheet) continue;
      if (const auto part = intersection(block.area, cells.areas.front()))
        count += static_cast<double>(cellCount({*part}));
    }
    return count;
  };
  calc::refuseLongSearches(work, filled, longest);
}

void ValueMirror::bringNames(const Workbook& original, const CallLimits& limits) {
  copyNames(original, workbook(), limits);
}

std::pair<int, int> ValueMirror::freePlace() const {
  // Not at the end of the sheet: everything would take long on all the rows and columns before it.
  constexpr int rowsBetween = 100, columnsBetween = 50;
  int row = 1, column = 1;
  for (const Block& block : blocks_) {
    row = std::max(row, block.area.lastRow);
    column = std::max(column, block.area.lastColumn);
  }
  return {std::min(row + rowsBetween, maxRow), std::min(column + columnsBetween, maxColumn)};
}

}  // namespace quorin::host::calc
