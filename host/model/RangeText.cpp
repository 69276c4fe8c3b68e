#include "host/model/RangeText.h"

#include <algorithm>

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "kit/value/Unicode.h"

namespace quorin::host {
namespace {

std::optional<std::string> inAnyCase(const std::vector<std::string>& names,
                                     const std::string& wanted) {
  const auto same = [&wanted](const std::string& name) { return caselesslyEqual(name, wanted); };
  const auto exact = std::find(names.begin(), names.end(), wanted);
  const auto it = exact != names.end() ? exact : std::find_if(names.begin(), names.end(), same);
  if (it == names.end()) return std::nullopt;
  return *it;
}

// A workbook's own name or table, as Excel writes it from outside: "Book.xlsx!Rate".
std::optional<RangeRef> bindNameOf(Session& session, const std::string& bookName,
                                   std::string_view name) {
  const auto book = findWorkbook(session, bookName);
  if (!book || name.empty() || parseA1Area(name)) return std::nullopt;
  return session.spreadsheet.named({*book, {}}, std::string(name));
}

// The two ends with what stands before the second left out, as in "A1:Data!B2", where that is the
// sheet of the first as well; otherwise as it stands.
std::string withoutSecondSheet(Session& session, const SheetRef& sheet, std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos || !parseA1Corner(text.substr(0, colon))) {
    return std::string(text);
  }
  const auto second = splitSheetPrefix(text.substr(colon + 1));
  if (!second || !second->sheet) return std::string(text);
  const auto book = second->book ? findWorkbook(session, *second->book) : sheet.book;
  if (!book || findWorksheet(session, *book, *second->sheet) != sheet) return std::string(text);
  return std::string(text.substr(0, colon + 1)).append(second->rest);
}

std::optional<RangeRef> bindPart(Session& session, const SheetRef& base, std::string_view text) {
  const std::string onBase = withoutSecondSheet(session, base, text);
  const auto parts = splitSheetPrefix(onBase);
  if (!parts) return std::nullopt;
  SheetRef sheet = base;
  if (parts->sheet) {
    auto book = parts->book ? findWorkbook(session, *parts->book) : base.book;
    auto found = book ? findWorksheet(session, *book, *parts->sheet) : std::nullopt;
    if (!found) return parts->book ? std::nullopt : bindNameOf(session, *parts->sheet, parts->rest);
    sheet = std::move(*found);
  }
  const std::string rest = withoutSecondSheet(session, sheet, parts->rest);
  if (const auto area = parseA1Area(rest)) return RangeRef{std::move(sheet), {*area}};
  if (rest.empty()) return std::nullopt;
  return session.spreadsheet.named(sheet, rest);
}

}  // namespace

std::optional<RangeRef> bindRangeText(Session& session, const std::optional<SheetRef>& container,
                                      std::string_view text) {
  const auto base = container ? container : session.spreadsheet.activeSheet();
  auto bound = base ? bindReference(session, *base, text) : std::nullopt;
  if (bound && container && bound->sheet != *container) return std::nullopt;
  return bound;
}

std::optional<RangeRef> bindReference(Session& session, const SheetRef& from,
                                      std::string_view text) {
  if (text.empty() || text.back() == ',') return std::nullopt;
  std::optional<RangeRef> bound;
  while (!text.empty()) {
    auto part = bindPart(session, from, takeArea(text));
    if (!part) return std::nullopt;
    if (!bound) {
      bound = std::move(part);
      continue;
    }
    if (part->sheet != bound->sheet) return std::nullopt;
    bound->areas.insert(bound->areas.end(), part->areas.begin(), part->areas.end());
  }
  return bound;
}

// The active workbook is often asked for by the name that was told just before: looking at all of
// them takes long.
std::optional<std::string> findWorkbook(Session& session, const std::string& name) {
  if (!name.empty() && name == session.toldBook) return name;
  return inAnyCase(session.spreadsheet.workbooks(), name);
}

std::optional<SheetRef> findWorksheet(Session& session, const std::string& book,
                                      const std::string& name) {
  auto found = inAnyCase(session.spreadsheet.worksheets(book), name);
  if (!found) return std::nullopt;
  return SheetRef{book, std::move(*found)};
}

}  // namespace quorin::host
