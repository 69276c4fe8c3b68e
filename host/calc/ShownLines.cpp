#include "host/calc/ShownLines.h"

#include <algorithm>
#include <array>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <list>
#include <map>
#include <random>
#include <set>
#include <tuple>
#include <utility>

#include "host/Address.h"
#include "host/calc/Answered.h"
#include "host/calc/Arguments.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/MarkShape.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;
using Cells = Reference<css::sheet::XSheetCellRanges>;
using Page = Reference<css::drawing::XDrawPage>;

// All of what is remembered of a workbook. Its own name can change; this one cannot.
std::string prefixOf(const Workbook& workbook) {
  return "/quorin/shown/" + uidOf(workbook) + "\n";
}

std::string newKey(const Workbook& workbook) {
  std::random_device random;
  return prefixOf(workbook) + std::to_string(random()) + "-" + std::to_string(random());
}

// Lines as they are kept, with the numbers that they had when they were shown.
struct Line {
  int number = 0;
  bool isFiltered = false, isSettled = false;
  Cells cells;                         // none once it is settled
  std::array<int, 2> besides{-1, -1};  // places among the others' cells, or none
};
struct Kept {
  SheetRef sheet;
  Lines kind = Lines::rows;
  Page page;
  std::vector<Line> lines;
  std::vector<Cells> besides;
};

// The order of the parts, each a sequence of one kind of thing for all lines.
enum Part { namesPart, rowsPart, pagePart, numbersPart, cellsPart, besidesPart, partCount };
// What is told of a line by numbers.
enum Field { numberField, filteredField, settledField, firstBeside, secondBeside, fieldCount };

Any written(const Kept& kept) {
  std::vector<sal_Int32> numbers;
  std::vector<Cells> cells;
  for (const Line& line : kept.lines) {
    numbers.insert(numbers.end(), {line.number, line.isFiltered ? 1 : 0, line.isSettled ? 1 : 0,
                                   line.besides[0], line.besides[1]});
    cells.push_back(line.cells);
  }
  const std::vector<rtl::OUString> names{toUno(kept.sheet.book), toUno(kept.sheet.sheet)};
  return Any(sequenceOf<Any>({Any(sequenceOf(names)), Any(kept.kind == Lines::rows), Any(kept.page),
                              Any(sequenceOf(numbers)), Any(sequenceOf(cells)),
                              Any(sequenceOf(kept.besides))}));
}

// Nothing for what others have put there.
std::optional<Kept> keptIn(const Any& value) {
  Sequence<Any> parts;
  if (!(value >>= parts) || parts.getLength() != partCount) return std::nullopt;
  Kept kept;
  bool rows = true;
  Sequence<rtl::OUString> names;
  Sequence<sal_Int32> numbers;
  Sequence<Cells> cells, besides;
  const bool whole = (parts[namesPart] >>= names) && (parts[rowsPart] >>= rows) &&
                     (parts[numbersPart] >>= numbers) && (parts[cellsPart] >>= cells) &&
                     (parts[besidesPart] >>= besides) && names.getLength() == 2 &&
                     numbers.getLength() == cells.getLength() * fieldCount;
  if (!whole) return std::nullopt;
  parts[pagePart] >>= kept.page;
  kept.sheet = {toText(names[0]), toText(names[1])};
  kept.kind = rows ? Lines::rows : Lines::columns;
  kept.besides.assign(besides.begin(), besides.end());
  for (sal_Int32 i = 0; i < cells.getLength(); ++i) {
    const sal_Int32* const fields = numbers.getConstArray() + i * fieldCount;
    kept.lines.push_back({fields[numberField],
                          fields[filteredField] != 0,
                          fields[settledField] != 0,
                          cells[i],
                          {fields[firstBeside], fields[secondBeside]}});
  }
  return kept;
}

// Makes what follows the cells of a line of the sheet: one call each.
class CellsOfLines {
 public:
  CellsOfLines(const Reference<css::sheet::XSpreadsheet>& sheet, Lines kind)
      : query_(sheet, UNO_QUERY_THROW),
        address_(Reference<css::sheet::XCellRangeAddressable>(sheet, UNO_QUERY_THROW)
                     ->getRangeAddress()),
        kind_(kind) {}

  Cells of(int number) const {
    css::table::CellRangeAddress address = address_;
    if (kind_ == Lines::rows) {
      address.StartRow = address.EndRow = number - 1;
    } else {
      address.StartColumn = address.EndColumn = number - 1;
    }
    return answered(query_->queryIntersection(address));
  }

 private:
  const Reference<css::sheet::XCellRangesQuery> query_;
  const css::table::CellRangeAddress address_;
  const Lines kind_;
};

// The sheet with that page, which is probably at that position. Where sheets were removed the
// office's ranges of their cells go on as those of another sheet; the page that a sheet is drawn on
// goes with it, and comes back with it.
Reference<css::sheet::XSpreadsheet> sheetWith(const Workbook& workbook, const Page& page,
                                              sal_Int32 position) {
  const Reference<css::container::XIndexAccess> sheets(workbook.sheets, UNO_QUERY_THROW);
  const sal_Int32 count = sheets->getCount();
  const auto sheetAt = [&](sal_Int32 i) {
    const Reference<css::sheet::XSpreadsheet> sheet(sheets->getByIndex(i), UNO_QUERY_THROW);
    return drawPageOf(sheet) == page ? sheet : Reference<css::sheet::XSpreadsheet>();
  };
  if (position < count)
    if (auto sheet = sheetAt(position); sheet.is()) return sheet;
  for (sal_Int32 i = 0; i < count; ++i)
    if (auto sheet = sheetAt(i); sheet.is()) return sheet;
  return {};
}

// Where the cells are that were one line; nothing where it is deleted or has another size.
std::optional<std::pair<sal_Int32, int>> lineAt(const Cells& cells, Lines kind) {
  if (!cells.is()) return std::nullopt;
  const auto addresses = cells->getRangeAddresses();
  if (addresses.getLength() != 1) return std::nullopt;
  const Area area = areaOf(addresses[0]);
  if (lineCount(area, kind) != 1) return std::nullopt;
  return std::pair(sal_Int32{addresses[0].Sheet}, firstLine(area, kind));
}

// The places among the entries' own of those that stand under that key.
std::set<std::size_t> placesUnder(const std::string& key, const ShownLines::Entries& entries) {
  std::set<std::size_t> places;
  for (const ShownLines::Entry& each : entries)
    if (each.key == key) places.insert(each.index);
  return places;
}

std::set<std::string> keysOf(const ShownLines::Entries& entries) {
  std::set<std::string> keys;
  for (const ShownLines::Entry& each : entries) keys.insert(each.key);
  return keys;
}

}  // namespace

ShownLines::ShownLines(const Reference<css::uno::XComponentContext>& context)
    : memory_(context, css::uno::UNO_QUERY) {}

void ShownLines::put(const std::string& key, const Any& value) const {
  if (memory_->hasByName(toUno(key))) memory_->removeByName(toUno(key));
  memory_->insertByName(toUno(key), value);
}

void ShownLines::remember(const Workbook& workbook, const SheetRef& sheet, Lines kind,
                          const std::vector<int>& numbers, const LineStates& states,
                          const std::vector<int>& others) const {
  if (!memory_.is()) return;
  const auto itself = sheetOf(workbook, sheet.sheet);
  const CellsOfLines cells(itself, kind);
  Kept kept{sheet, kind, drawPageOf(itself), {}, {}};
  std::vector<int> sorted = numbers;
  std::sort(sorted.begin(), sorted.end());
  for (auto first = sorted.begin(); first != sorted.end();) {
    auto end = first + 1;
    while (end != sorted.end() && *end <= *(end - 1) + 1) ++end;
    std::array<int, 2> besides{-1, -1};
    for (const std::size_t side : {0U, 1U}) {
      const int beside = side == 0 ? *first - 1 : *(end - 1) + 1;
      if (!states.isHidden(beside)) continue;
      besides[side] = static_cast<int>(kept.besides.size());
      kept.besides.push_back(cells.of(beside));
    }
    for (; first != end; ++first)
      kept.lines.push_back({*first, states.isFiltered(*first), false, cells.of(*first), besides});
  }
  for (const int number : others) kept.lines.push_back({number, false, true, {}, {-1, -1}});
  if (!kept.lines.empty()) put(newKey(workbook), written(kept));
}

void ShownLines::settle(const Entries& entries) const {
  for (const std::string& key : keysOf(entries)) {
    auto kept = keptIn(memory_->getByName(toUno(key)));
    if (!kept) continue;
    for (const std::size_t place : placesUnder(key, entries)) {
      Line& line = kept->lines.at(place);
      line.isSettled = true;
      line.cells.clear();
    }
    put(key, written(*kept));
  }
}

void ShownLines::forget(const Entries& entries) const {
  for (const std::string& key : keysOf(entries)) {
    if (!memory_->hasByName(toUno(key))) continue;
    auto kept = keptIn(memory_->getByName(toUno(key)));
    const auto gone = placesUnder(key, entries);
    if (kept && gone.size() < kept->lines.size()) {
      std::vector<Line> left;
      for (std::size_t i = 0; i < kept->lines.size(); ++i)
        if (!gone.contains(i)) left.push_back(kept->lines[i]);
      kept->lines = std::move(left);
      put(key, written(*kept));
    } else {
      memory_->removeByName(toUno(key));
    }
  }
}

void ShownLines::read(const Workbook& workbook, const std::string& key, Entries& found) const {
  const auto kept = keptIn(memory_->getByName(toUno(key)));
  if (!kept) return;
  std::vector<std::optional<int>> besides;
  for (const Cells& cells : kept->besides) {
    const auto line = lineAt(cells, kept->kind);
    besides.push_back(line ? std::optional(line->second) : std::nullopt);
  }
  Reference<css::sheet::XSpreadsheet> sheet;
  std::string name;
  bool isSought = false;
  for (std::size_t i = 0; i < kept->lines.size(); ++i) {
    const Line& line = kept->lines[i];
    Entry& entry = found.emplace_back();
    entry.key = key;
    entry.index = i;
    entry.asked = {kept->sheet, kept->kind, line.number};
    entry.isSettled = line.isSettled;
    entry.isFiltered = line.isFiltered;
    const auto place = line.isSettled ? std::nullopt : lineAt(line.cells, kept->kind);
    if (!place) continue;
    if (!std::exchange(isSought, true)) {
      sheet = sheetWith(workbook, kept->page, place->first);
      if (sheet.is())
        name = toText(Reference<css::container::XNamed>(sheet, UNO_QUERY_THROW)->getName());
    }
    if (!sheet.is()) continue;
    entry.place = Place{sheet, name, place->second};
    for (const int beside : line.besides)
      if (beside >= 0 && besides.at(static_cast<std::size_t>(beside)))
        entry.neighbours.push_back(*besides[static_cast<std::size_t>(beside)]);
  }
}

ShownLines::Entries ShownLines::entries(const Workbook& workbook) const {
  Entries found;
  if (!memory_.is()) return found;
  const std::string prefix = prefixOf(workbook);
  for (const rtl::OUString& name : memory_->getElementNames())
    if (const std::string key = toText(name); key.starts_with(prefix)) read(workbook, key, found);
  return found;
}

namespace {

// Tells which shown lines of a workbook the user has made visible himself.
class OpenedLines {
 public:
  explicit OpenedLines(const ShownLines::Entries& all) {
    for (const ShownLines::Entry& each : all)
      if (!each.isSettled && each.place)
        ours_[{each.asked.kind, each.place->name, each.place->number}] = &each;
  }

  // `states` are those of the entry's sheet; it has a place.
  bool contains(const ShownLines::Entry& entry, const LineStates& states) const {
    if (entry.isFiltered && !states.isFiltered(entry.place->number)) return true;
    bool isBeside = false;
    std::set<int> seen;
    std::vector<const ShownLines::Entry*> left{&entry};
    while (!left.empty()) {
      const ShownLines::Entry& next = *left.back();
      left.pop_back();
      for (const int beside : next.neighbours) {
        if (!seen.insert(beside).second) continue;
        const auto own = ours_.find({entry.asked.kind, entry.place->name, beside});
        if (own != ours_.end()) {
          left.push_back(own->second);
        } else if (states.isHidden(beside)) {
          return false;
        } else {
          isBeside = true;
        }
      }
    }
    return isBeside;
  }

 private:
  std::map<std::tuple<Lines, std::string, int>, const ShownLines::Entry*> ours_;
};

}  // namespace

HiddenAgain hideShownLines(QuietChanges& changes, const Workbook& workbook,
                           const ShownLines::Entries& entries, const ShownLines::Entries& all) {
  struct Group {
    LineStates states;
    HiddenLines lines;
  };
  HiddenAgain again;
  const OpenedLines opened(all);
  std::list<Group> groups;
  for (const ShownLines::Entry& entry : entries) {
    if (entry.isSettled || !entry.place) continue;
    const auto& [sheet, name, number] = *entry.place;
    const Lines kind = entry.asked.kind;
    auto group = std::find_if(groups.begin(), groups.end(), [&, &its = name](const Group& each) {
      return each.lines.name == its && each.lines.kind == kind;
    });
    if (group == groups.end())
      group = groups.insert(group, {LineStates(sheet, kind), {sheet, name, kind, {}}});
    if (group->states.isHidden(number)) continue;
    if (opened.contains(entry, group->states)) {
      again.opened.push_back(entry);
    } else {
      group->lines.numbers.push_back(number);
    }
  }
  for (Group& group : groups) {
    group.states.setHidden(changes, workbook, group.lines.numbers, true);
    again.lines.push_back(std::move(group.lines));
  }
  return again;
}

}  // namespace quorin::host::calc
