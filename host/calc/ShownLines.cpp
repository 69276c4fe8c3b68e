#include "host/calc/ShownLines.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>
#include <regex>

#include "host/Address.h"
#include "host/calc/CalcRanges.h"
#include "host/calc/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

constexpr const char* rowsMark = "rows ";
constexpr const char* columnsMark = "columns ";

// All of what is remembered of a workbook. Its own name can change; this one cannot.
std::string prefixOf(const Workbook& workbook) {
  rtl::OUString uid;
  Reference<css::beans::XPropertySet>(workbook.model, UNO_QUERY_THROW)
      ->getPropertyValue("RuntimeUID") >>= uid;
  return "/quorin/shown/" + toText(uid) + "\n";
}

std::string nameOf(const SheetRef& sheet) {
  return "\n" + sheet.book + "\n" + sheet.sheet;
}

// The lines that had these numbers, then those that had them later, and so on.
class Keys {
 public:
  // `prefix`: that of the workbook.
  Keys(const std::string& prefix, const SheetRef& sheet, const Area& area, Lines kind)
      : start_(prefix + (kind == Lines::rows ? rowsMark : columnsMark) +
               std::to_string(firstLine(area, kind)) + "-" + std::to_string(lastLine(area, kind))),
        name_(nameOf(sheet)) {}
  std::string next() { return start_ + std::string(count_++, '+') + name_; }

 private:
  const std::string start_, name_;
  std::size_t count_ = 0;
};

struct Asked {
  Lines kind;
  RangeRef lines;
};

// What stands in a key behind the prefix; nothing for a text of others.
std::optional<Asked> askedIn(const std::string& text) {
  static const std::regex form("(rows|columns) ([0-9]{1,7})-([0-9]{1,7})\\+*\n([^\n]*)\n([^\n]*)");
  std::smatch parts;
  if (!std::regex_match(text, parts, form)) return std::nullopt;
  const int first = std::stoi(parts[2]), last = std::stoi(parts[3]);
  const bool rows = parts[1] == "rows";
  return Asked{rows ? Lines::rows : Lines::columns,
               {{parts[4], parts[5]},
                {rows ? Area{first, 1, last, maxColumn} : Area{1, first, maxRow, last}}}};
}

}  // namespace

ShownLines::ShownLines(const Reference<css::uno::XComponentContext>& context)
    : memory_(context, UNO_QUERY) {}

void ShownLines::remember(const Workbook& workbook, const RangeRef& lines, Lines kind) {
  if (!memory_.is()) return;
  const std::string prefix = prefixOf(workbook);
  for (const Area& area : lines.areas) {
    const Reference<css::sheet::XSheetCellRangeContainer> cells(
        Reference<css::lang::XMultiServiceFactory>(workbook.model, UNO_QUERY_THROW)
            ->createInstance("com.sun.star.sheet.SheetCellRanges"),
        UNO_QUERY_THROW);
    cells->addRangeAddress(Reference<css::sheet::XCellRangeAddressable>(
                               cellsOf(workbook, lines.sheet.sheet, area), UNO_QUERY_THROW)
                               ->getRangeAddress(),
                           false);
    Keys keys(prefix, lines.sheet, area, kind);
    std::string key = keys.next();
    bool known = false;
    while ((known = memory_->hasByName(toUno(key))) &&
           !isAt(workbook, key, lines.sheet, area, kind))
      key = keys.next();
    if (known) memory_->removeByName(toUno(key));
    memory_->insertByName(toUno(key), Any(cells));
  }
}

void ShownLines::forget(const Workbook& workbook, const RangeRef& lines, Lines kind) {
  const std::string prefix = prefixOf(workbook);
  for (const Area& area : lines.areas) {
    Keys keys(prefix, lines.sheet, area, kind);
    while (forget(keys.next())) continue;
  }
}

bool ShownLines::forget(const std::string& key) {
  if (!memory_.is() || !memory_->hasByName(toUno(key))) return false;
  memory_->removeByName(toUno(key));
  return true;
}

// Whether what the key stands for has not moved.
bool ShownLines::isAt(const Workbook& workbook, const std::string& key, const SheetRef& sheet,
                      const Area& area, Lines kind) const {
  const auto place = now(workbook, key, kind);
  if (!place || place->areas.empty()) return true;
  const Area& there = place->areas.front();
  const bool same = firstLine(there, kind) == firstLine(area, kind) &&
                    lastLine(there, kind) == lastLine(area, kind);
  return same && place->sheet.sheet == sheet.sheet;
}

std::vector<RangeRef> ShownLines::find(const Workbook& workbook, const RangeRef& lines,
                                       Lines kind) const {
  std::vector<RangeRef> places;
  if (!memory_.is()) return places;
  const Area& area = firstArea(lines);
  Keys keys(prefixOf(workbook), lines.sheet, area, kind);
  while (auto place = now(workbook, keys.next(), kind)) {
    if (!place->areas.empty() && lineCount(place->areas[0], kind) != lineCount(area, kind))
      place->areas.clear();
    places.push_back(*std::move(place));
  }
  return places;
}

std::optional<RangeRef> ShownLines::now(const Workbook& workbook, const std::string& key,
                                        Lines kind) const {
  if (!memory_->hasByName(toUno(key))) return std::nullopt;
  const Reference<css::sheet::XSheetCellRanges> cells(memory_->getByName(toUno(key)), UNO_QUERY);
  if (!cells.is()) return std::nullopt;
  const auto addresses = cells->getRangeAddresses();
  RangeRef place{{workbook.name, {}}, {}};
  if (addresses.getLength() != 1) return place;
  place.sheet.sheet = sheetNames(workbook).at(static_cast<std::size_t>(addresses[0].Sheet));
  place.areas = {wholeLines(areaOf(addresses[0]), kind)};
  return place;
}

std::vector<ShownLines::Unreachable> ShownLines::unreachable(const Workbook& workbook) const {
  std::vector<Unreachable> found;
  if (!memory_.is()) return found;
  const std::string prefix = prefixOf(workbook);
  for (const rtl::OUString& name : memory_->getElementNames()) {
    const std::string key = toText(name);
    if (!key.starts_with(prefix)) continue;
    auto asked = askedIn(key.substr(prefix.size()));
    if (!asked) continue;
    auto place = now(workbook, key, asked->kind);
    if (place && !place->areas.empty() && place->sheet != asked->lines.sheet)
      found.push_back({key, asked->kind, std::move(asked->lines), *std::move(place)});
  }
  return found;
}

}  // namespace quorin::host::calc
