#include "host/calc/reveal/ShownRows.h"

#include <algorithm>
#include <array>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <iterator>
#include <random>
#include <set>
#include <string_view>
#include <utility>

#include "host/calc/marks/MarkShape.h"
#include "host/calc/reveal/SheetFilters.h"
#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::UNO_QUERY_THROW;
using Cells = Reference<css::sheet::XSheetCellRanges>;
using Page = Reference<css::drawing::XDrawPage>;

constexpr std::string_view memoryPrefix = "/quorin/shown/";

// All of what is remembered of a workbook. Its own name can change; this one cannot.
std::string prefixOf(const Workbook& workbook) {
  return std::string(memoryPrefix) + uidOf(workbook) + "\n";
}

std::string newKey(const Workbook& workbook) {
  std::random_device random;
  return prefixOf(workbook) + std::to_string(random()) + "-" + std::to_string(random());
}

// Rows as they are kept, with the numbers that they had when they were shown.
struct Row {
  int number = 0;
  ShownRows::State state = ShownRows::State::hidden;
  bool isFiltered = false;
  int filter = -1;                     // the place of its text, or none
  Cells cells;                         // none once it is over
  std::array<int, 2> besides{-1, -1};  // places among the others' cells, or none
};
struct Kept {
  std::string owner;
  SheetRef sheet;
  Axis axis = Axis::rows;
  Page page;
  std::vector<Row> rows;
  std::vector<Cells> besides;
  std::vector<std::string> filters;
};

// The order of the parts, each a sequence of one kind of thing for all rows.
enum Part {
  namesPart,
  rowsPart,
  pagePart,
  numbersPart,
  cellsPart,
  besidesPart,
  filtersPart,
  partCount
};
// What is told of a row by numbers.
enum Field {
  numberField,
  stateField,
  filteredField,
  filterField,
  firstBeside,
  secondBeside,
  fieldCount
};

Any written(const Kept& kept) {
  std::vector<sal_Int32> numbers;
  std::vector<Cells> cells;
  for (const Row& row : kept.rows) {
    numbers.insert(numbers.end(),
                   {row.number, static_cast<sal_Int32>(row.state), row.isFiltered ? 1 : 0,
                    row.filter, row.besides[0], row.besides[1]});
    cells.push_back(row.cells);
  }
  const std::vector<rtl::OUString> names{toUno(kept.sheet.book), toUno(kept.sheet.sheet),
                                         toUno(kept.owner)};
  std::vector<rtl::OUString> filters;
  for (const std::string& filter : kept.filters) filters.push_back(toUno(filter));
  return Any(sequenceOf<Any>({Any(sequenceOf(names)), Any(kept.axis == Axis::rows), Any(kept.page),
                              Any(sequenceOf(numbers)), Any(sequenceOf(cells)),
                              Any(sequenceOf(kept.besides)), Any(sequenceOf(filters))}));
}

// Nothing for what others have put there.
std::optional<Kept> keptIn(const Any& value) {
  Sequence<Any> parts;
  if (!(value >>= parts) || parts.getLength() != partCount) return std::nullopt;
  Kept kept;
  bool rows = true;
  Sequence<rtl::OUString> names, filters;
  Sequence<sal_Int32> numbers;
  Sequence<Cells> cells, besides;
  const bool whole = (parts[namesPart] >>= names) && (parts[rowsPart] >>= rows) &&
                     (parts[numbersPart] >>= numbers) && (parts[cellsPart] >>= cells) &&
                     (parts[besidesPart] >>= besides) && (parts[filtersPart] >>= filters) &&
                     names.getLength() == 3 &&
                     numbers.getLength() == cells.getLength() * fieldCount;
  if (!whole) return std::nullopt;
  parts[pagePart] >>= kept.page;
  kept.sheet = {toText(names[0]), toText(names[1])};
  kept.owner = toText(names[2]);
  kept.axis = rows ? Axis::rows : Axis::columns;
  kept.besides.assign(besides.begin(), besides.end());
  for (const rtl::OUString& filter : filters) kept.filters.push_back(toText(filter));
  for (sal_Int32 i = 0; i < cells.getLength(); ++i) {
    const sal_Int32* const fields = numbers.getConstArray() + i * fieldCount;
    kept.rows.push_back({fields[numberField],
                         static_cast<ShownRows::State>(fields[stateField]),
                         fields[filteredField] != 0,
                         fields[filterField],
                         cells[i],
                         {fields[firstBeside], fields[secondBeside]}});
  }
  return kept;
}

// Makes what follows the cells of a row of the sheet: one call each.
class CellsOfRows {
 public:
  CellsOfRows(const Reference<css::sheet::XSpreadsheet>& sheet, Axis axis)
      : query_(sheet, UNO_QUERY_THROW),
        address_(Reference<css::sheet::XCellRangeAddressable>(sheet, UNO_QUERY_THROW)
                     ->getRangeAddress()),
        axis_(axis) {}

  Cells of(int number) const {
    css::table::CellRangeAddress address = address_;
    if (axis_ == Axis::rows) {
      address.StartRow = address.EndRow = number - 1;
    } else {
      address.StartColumn = address.EndColumn = number - 1;
    }
    return answered(query_->queryIntersection(address));
  }

 private:
  const Reference<css::sheet::XCellRangesQuery> query_;
  const css::table::CellRangeAddress address_;
  const Axis axis_;
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
    return drawPageIfAny(sheet) == page ? sheet : Reference<css::sheet::XSpreadsheet>();
  };
  if (position < count)
    if (auto sheet = sheetAt(position); sheet.is()) return sheet;
  for (sal_Int32 i = 0; i < count; ++i)
    if (auto sheet = sheetAt(i); sheet.is()) return sheet;
  return {};
}

// Where the cells are that were one row; nothing where it is deleted or has another size.
std::optional<std::pair<sal_Int32, int>> rowAt(const Cells& cells, Axis axis) {
  if (!cells.is()) return std::nullopt;
  const auto addresses = cells->getRangeAddresses();
  if (addresses.getLength() != 1) return std::nullopt;
  const Area area = areaOf(addresses[0]);
  if (countOn(area, axis) != 1) return std::nullopt;
  return std::pair(sal_Int32{addresses[0].Sheet}, firstOn(area, axis));
}

// Stays so, and where the row is does not matter any more.
bool isFinal(ShownRows::State state) {
  return state == ShownRows::State::over || state == ShownRows::State::opened;
}

// Which of those under that key they are. Another may have forgotten some of them since, so it is
// not their places that tell.
std::set<int> numbersUnder(const std::string& key, const ShownRows::Entries& entries) {
  std::set<int> numbers;
  for (const ShownRows::Entry& each : entries)
    if (each.key == key) numbers.insert(each.asked.number);
  return numbers;
}

void setRow(Row& row, ShownRows::State state) {
  if (isFinal(row.state)) return;
  row.state = state;
  if (isFinal(state)) row.cells.clear();
}

// Those that begin so; none without a memory.
std::vector<std::string> keysWith(const Reference<css::container::XNameContainer>& memory,
                                  std::string_view prefix) {
  std::vector<std::string> keys;
  if (!memory.is()) return keys;
  for (const rtl::OUString& name : memory->getElementNames())
    if (std::string key = toText(name); key.starts_with(prefix)) keys.push_back(std::move(key));
  return keys;
}

std::set<std::string> keysOf(const ShownRows::Entries& entries) {
  std::set<std::string> keys;
  for (const ShownRows::Entry& each : entries) keys.insert(each.key);
  return keys;
}

// A row beside one that is hidden in the same way, but for us: what shows that one shows both.
bool isHiddenBeside(const RowStates& states, const std::vector<int>& shown, int beside, int row) {
  const bool isHidden =
      states.isHidden(beside) || std::find(shown.begin(), shown.end(), beside) != shown.end();
  return isHidden && states.isFiltered(beside) == states.isFiltered(row);
}

// The place of the text among the others; none for an empty one.
int placeOf(const std::string& text, std::vector<std::string>& texts) {
  if (text.empty()) return -1;
  const auto found = std::find(texts.begin(), texts.end(), text);
  const auto place = static_cast<int>(found - texts.begin());
  if (found == texts.end()) texts.push_back(text);
  return place;
}

}  // namespace

ShownRows::ShownRows(const Reference<css::uno::XComponentContext>& context, Owner owner)
    : memory_(context, css::uno::UNO_QUERY), owner_(std::move(owner)) {}

void ShownRows::replace(const std::string& key, const Any& value) const {
  try {
    memory_->replaceByName(toUno(key), value);
  } catch (const css::container::NoSuchElementException&) {
    // Somebody else has forgotten it.
  }
}

std::string ShownRows::remember(const Workbook& workbook, const SheetRef& sheet, Axis axis,
                                const std::vector<int>& numbers, const RowStates& states,
                                const std::vector<int>& shown,
                                const std::vector<int>& others) const {
  if (!memory_.is()) return {};
  const auto itself = sheetOf(workbook, sheet.sheet);
  const CellsOfRows cells(itself, axis);
  std::optional<SheetFilters> filters;
  if (axis == Axis::rows && !numbers.empty()) filters.emplace(workbook, itself);
  Kept kept{owner_.text(), sheet, axis, drawPageOf(itself), {}, {}, {}};
  std::vector<int> sorted = numbers;
  std::sort(sorted.begin(), sorted.end());
  for (auto first = sorted.begin(); first != sorted.end();) {
    auto end = first + 1;
    while (end != sorted.end() && *end <= *(end - 1) + 1) ++end;
    std::array<int, 2> besides{-1, -1};
    for (const std::size_t side : {0U, 1U}) {
      const int row = side == 0 ? *first : *(end - 1), beside = side == 0 ? row - 1 : row + 1;
      if (!isHiddenBeside(states, shown, beside, row)) continue;
      besides[side] = static_cast<int>(kept.besides.size());
      kept.besides.push_back(cells.of(beside));
    }
    for (; first != end; ++first) {
      const int filter = filters ? placeOf(filters->over(*first), kept.filters) : -1;
      kept.rows.push_back(
          {*first, State::hidden, states.isFiltered(*first), filter, cells.of(*first), besides});
    }
  }
  for (const int number : others)
    kept.rows.push_back({number, State::over, false, -1, {}, {-1, -1}});
  if (kept.rows.empty()) return {};
  const std::string key = newKey(workbook);
  memory_->insertByName(toUno(key), written(kept));
  return key;
}

void ShownRows::set(const Entries& entries, State state) const {
  for (const std::string& key : keysOf(entries)) {
    if (!memory_->hasByName(toUno(key))) continue;
    auto kept = keptIn(memory_->getByName(toUno(key)));
    if (!kept) continue;
    const std::set<int> numbers = numbersUnder(key, entries);
    for (Row& row : kept->rows)
      if (numbers.contains(row.number)) setRow(row, state);
    replace(key, written(*kept));
  }
}

void ShownRows::set(const std::string& key, State state) const {
  if (key.empty()) return;
  auto kept = keptIn(memory_->getByName(toUno(key)));
  if (!kept) return;
  for (Row& row : kept->rows) setRow(row, state);
  replace(key, written(*kept));
}

void ShownRows::forget(const Entries& entries) const {
  for (const std::string& key : keysOf(entries)) {
    if (!memory_->hasByName(toUno(key))) continue;
    auto kept = keptIn(memory_->getByName(toUno(key)));
    Entries taken;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(taken),
                 [](const Entry& each) { return each.state == State::taken && each.place; });
    const std::set<int> gone = numbersUnder(key, entries), owed = numbersUnder(key, taken);
    if (kept) {
      std::erase_if(kept->rows, [&](const Row& row) {
        return gone.contains(row.number) && !owed.contains(row.number);
      });
      for (Row& row : kept->rows)
        if (owed.contains(row.number)) setRow(row, State::owed);
    }
    if (kept && !kept->rows.empty()) {
      replace(key, written(*kept));
    } else {
      memory_->removeByName(toUno(key));
    }
  }
}

void ShownRows::read(const Workbook& workbook, const std::string& key, Entries& found) const {
  const auto kept = keptIn(memory_->getByName(toUno(key)));
  if (!kept) return;
  std::vector<std::optional<int>> besides;
  for (const Cells& cells : kept->besides) {
    const auto row = rowAt(cells, kept->axis);
    besides.push_back(row ? std::optional(row->second) : std::nullopt);
  }
  Reference<css::sheet::XSpreadsheet> sheet;
  std::string name;
  bool isSought = false;
  for (const Row& row : kept->rows) {
    Entry& entry = found.emplace_back();
    entry.key = key;
    entry.owner = kept->owner;
    entry.asked = {kept->sheet, kept->axis, row.number};
    entry.state = row.state;
    entry.isFiltered = row.isFiltered;
    if (row.filter >= 0) entry.filter = kept->filters.at(static_cast<std::size_t>(row.filter));
    const auto place = rowAt(row.cells, kept->axis);
    if (!place) continue;
    if (!std::exchange(isSought, true)) {
      sheet = sheetWith(workbook, kept->page, place->first);
      if (sheet.is())
        name = toText(Reference<css::container::XNamed>(sheet, UNO_QUERY_THROW)->getName());
    }
    if (!sheet.is()) continue;
    entry.place = Place{sheet, name, place->second};
    for (const int beside : row.besides)
      if (beside >= 0 && besides.at(static_cast<std::size_t>(beside)))
        entry.neighbours.push_back(*besides[static_cast<std::size_t>(beside)]);
  }
}

ShownRows::Entries ShownRows::entries(const Workbook& workbook) const {
  Entries found;
  for (const std::string& key : keysWith(memory_, prefixOf(workbook))) read(workbook, key, found);
  std::erase_if(found, [](const Entry& each) { return each.state == State::owed; });
  return found;
}

ShownRows::Entries ShownRows::owed(const Workbook& workbook) const {
  Entries found;
  for (const std::string& key : keysWith(memory_, prefixOf(workbook))) read(workbook, key, found);
  std::erase_if(found, [](const Entry& each) { return each.state != State::owed; });
  return found;
}

void ShownRows::leaveToOthers(Entries& entries) const {
  std::erase_if(entries, [this](const Entry& each) { return !owner_.caresFor(each.owner); });
}

bool ShownRows::isAnothers(const std::string& id) const {
  for (const std::string& key : keysWith(memory_, memoryPrefix)) {
    if (idOf(key) != id) continue;
    const auto kept = keptIn(memory_->getByName(toUno(key)));
    return kept && !owner_.caresFor(kept->owner);
  }
  return false;
}

std::string ShownRows::idOf(const std::string& key) {
  return key.substr(key.find('\n') + 1);
}

std::optional<ShownRows::Noted> ShownRows::noted(const std::string& id) const {
  for (const std::string& key : keysWith(memory_, memoryPrefix)) {
    if (idOf(key) != id) continue;
    const auto kept = keptIn(memory_->getByName(toUno(key)));
    if (!kept) return std::nullopt;
    Noted noted{kept->page, kept->axis, {}};
    bool mayStay = false;
    for (const Row& row : kept->rows) {
      const auto place = row.state == State::owed ? std::nullopt : rowAt(row.cells, kept->axis);
      if (!place) continue;
      mayStay = true;
      if (row.state != State::taken) noted.numbers.push_back(place->second);
    }
    return mayStay ? std::optional(std::move(noted)) : std::nullopt;
  }
  return std::nullopt;
}

bool ShownRows::isEmpty() const {
  return keysWith(memory_, memoryPrefix).empty();
}

ShownRows::Entries ShownRows::entriesElsewhere(const Workbook& workbook, const SheetRef& sheet,
                                               Axis axis) const {
  Entries found;
  const std::string its = prefixOf(workbook);
  for (const std::string& key : keysWith(memory_, memoryPrefix)) {
    if (key.starts_with(its)) continue;
    const auto kept = keptIn(memory_->getByName(toUno(key)));
    if (!kept || kept->axis != axis || kept->sheet != sheet) continue;
    for (const Row& row : kept->rows) {
      Entry& entry = found.emplace_back();
      entry.key = key;
      entry.asked = {sheet, axis, row.number};
      entry.state = row.state;
    }
  }
  return found;
}

}  // namespace quorin::host::calc
