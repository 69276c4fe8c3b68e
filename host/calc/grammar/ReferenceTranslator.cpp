#include "host/calc/grammar/ReferenceTranslator.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "host/calc/grammar/CalcReference.h"
#include "host/calc/uno/OfficeFiles.h"

namespace quorin::host::calc {

ReferenceTranslator::ReferenceTranslator(ReferenceStyle style, IsSheet isSheet,
                                         FormulaInPassing& formula)
    : style_(style), sheets_(std::move(isSheet)), formula_(formula) {}

bool ReferenceTranslator::reference() {
  const std::string_view text = formula_.text;
  std::size_t position = formula_.at;
  auto* const sheet = sheets_.read(text, position);
  const auto surely = [&] { return !isWordCharacter(formula_.next()) || sheets_.exists(*sheet); };
  if (sheet && plainReferenceOn(*sheet, position, surely)) return true;
  const auto from = readCalcEnd(text, position, false);
  if (!from) {
    if (sheet) sheetOfName(*sheet, position);
    return false;
  }
  if (sheet && !surely()) return false;
  RangeText range{*from, std::nullopt};
  const auto* lastSheet = sheet;
  if (position < text.size() && text[position] == ':') {
    std::size_t behind = position + 1;
    const auto* const second = sheets_.read(text, behind);
    const auto to = readCalcEnd(text, behind, true);
    const bool sameKind =
        to && (from->lost || to->lost ||
               ((to->row == 0) == (from->row == 0) && (to->column == 0) == (from->column == 0)));
    if (sameKind) {
      range.to = to;
      position = behind;
      if (second) lastSheet = second;
    } else if (from->row == 0 || from->column == 0) {
      return false;
    }
  }
  write(sheet, lastSheet, range);
  formula_.at = position;
  return true;
}

template <typename Surely>
bool ReferenceTranslator::plainReferenceOn(const SheetPrefixes::Sheet& sheet, std::size_t start,
                                           Surely surely) {
  if (style_ != ReferenceStyle::a1 || sheet.name == "#REF!") return false;
  const std::size_t end = behindPlainReference(formula_.text, start);
  if (end == start || !surely()) return false;
  formula_.out += sheet.written;
  formula_.out += '!';
  formula_.at = start;
  copyUpTo(end);
  return true;
}

void ReferenceTranslator::write(const SheetPrefixes::Sheet* first, const SheetPrefixes::Sheet* last,
                                RangeText range) {
  std::string& out = formula_.out;
  if ((first && first->name == "#REF!") || (last && last->name == "#REF!")) {
    out += "#REF!";
    return;
  }
  if (first && last->name != first->name) {
    if (range.to == range.from) range.to.reset();
    out += excelSheet(first->name + ":" + last->name);
    out += '!';
  } else if (first) {
    out += first->written;
    out += '!';
  }
  append(out, range, style_, formula_.cell);
}

// A name that belongs to a sheet: $Sheet1.rate. Without the dollar sign or quotes it is one word.
void ReferenceTranslator::sheetOfName(const SheetPrefixes::Sheet& sheet, std::size_t position) {
  const std::string_view text = formula_.text;
  if (!formula_.isNext('$') && !formula_.isNext('\'')) return;
  if (position >= text.size() || !isWordCharacter(text[position])) return;
  if (sheet.name != "#REF!") formula_.out += sheet.written + "!";
  formula_.at = position;
}

// 'file:///folder/book.xlsx'#$Sheet.A1, and with a name behind "#".
bool ReferenceTranslator::externalSheet() {
  const std::string_view text = formula_.text;
  std::size_t position = formula_.at;
  const auto url = readQuoted(text, position);
  if (!url || position >= text.size() || text[position] != '#') return false;
  const std::filesystem::path path = pathOfUrl(*url);
  const std::size_t slash = url->rfind('/') + 1;
  const std::string folder =
      path.empty() ? url->substr(0, slash) : (path.parent_path() / "").string();
  const std::string file = path.empty() ? url->substr(slash) : path.filename().string();
  ++position;
  const auto sheet = readCalcSheet(text, position);
  formula_.at = position;
  formula_.out += excelSheet(sheet ? folder + "[" + file + "]" + *sheet : folder + file) + "!";
  return true;
}

bool ReferenceTranslator::externalCells() {
  const std::string_view text = formula_.text;
  std::size_t position = formula_.at;
  const auto from = readCalcEnd(text, position, false);
  if (!from) return false;
  RangeText range{*from, std::nullopt};
  if (position < text.size() && text[position] == ':') {
    std::size_t behind = position + 1;
    range.to = readCalcEnd(text, behind, true);
    if (range.to) position = behind;
  }
  append(formula_.out, range, style_, formula_.cell);
  formula_.at = position;
  return true;
}

}  // namespace quorin::host::calc
