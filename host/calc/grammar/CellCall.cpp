#include "host/calc/grammar/CellCall.h"

#include <algorithm>
#include <array>

#include "host/Address.h"
#include "host/calc/grammar/ExcelReference.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/ReferenceWriter.h"

namespace quorin::host::calc {
namespace {

// What is asked for: a text that stands there, or what an argument gives.
std::optional<std::string> kindOf(const FunctionCall& call, const ExpressionContext& context) {
  if (call.parts.empty()) return std::nullopt;
  const CallArgument& argument = call.parts.front();
  const std::string_view text = trimmed(argument.calc);
  if (text.starts_with('"') && text.find('"', 1) == text.size() - 1) {
    return std::string(text.substr(1, text.size() - 2));
  }
  if (!context.valueOf || argument.excel.empty()) return std::nullopt;
  const auto value = context.valueOf(argument.excel);
  const auto* kind = value ? std::get_if<std::string>(&*value) : nullptr;
  return kind == nullptr ? std::nullopt : std::optional(*kind);
}

// In Calc's grammar.
std::string literal(const CellValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return numberText(*number);
  if (const auto* error = std::get_if<CellError>(&value)) return error->text;
  const auto* text = std::get_if<std::string>(&value);
  return inQuotes(text == nullptr ? "" : *text);
}

// Where the address of the referred cell is told; it may be calculated.
std::optional<RangeRef> referredCell(const CallArgument& argument,
                                     const ExpressionContext& context) {
  if (!context.valueOf || argument.excel.empty()) return std::nullopt;
  const auto told = context.valueOf("CELL(\"address\"," + argument.excel + ")");
  const auto* found = told ? std::get_if<std::string>(&*told) : nullptr;
  if (found == nullptr) return std::nullopt;
  std::size_t position = 0;
  const auto span = readSheetSpan(*found, position);
  const auto range = readRange(*found, position);
  if (!range || position != found->size() || (span && !span->last.empty())) return std::nullopt;
  if (!span) return RangeRef{context.from, {areaOf(*range)}};
  const auto place = placeOf(context, span->book, span->first);
  return place ? std::optional(RangeRef{place->sheet, {areaOf(*range)}}) : std::nullopt;
}

// What is asked about; nothing where there is no such argument.
std::span<const RangeRef> askedAbout(const FunctionCall& call) {
  if (call.parts.size() != 2) return {};
  const CallArgument& argument = call.parts[1];
  return call.cells.subspan(argument.from - call.parts[0].from, argument.upTo - argument.from);
}

// How the first of the cells looks.
std::optional<std::string> looksOf(const std::string& kind, const FunctionCall& call,
                                   const ExpressionContext& context) {
  if (!context.looks) return std::nullopt;
  const CallArgument& argument = call.parts.back();
  const auto cells = askedAbout(call);
  const bool stands = argument.isCells && cells.size() == 1;
  const auto range = stands ? cells.front() : referredCell(argument, context);
  if (!range) return std::nullopt;
  const Area& area = range->areas.front();
  const auto value = context.looks(
      kind, {range->sheet, {{area.firstRow, area.firstColumn, area.firstRow, area.firstColumn}}});
  return value ? std::optional(literal(*value)) : std::nullopt;
}

}  // namespace

std::optional<std::string> cellCall(const FunctionCall& call, const ExpressionContext& context,
                                    Reach& reach) {
  static constexpr std::array<std::string_view, 6> looks{"COLOR",  "FORMAT",  "PARENTHESES",
                                                         "PREFIX", "PROTECT", "WIDTH"};
  const auto asked = kindOf(call, context);
  const std::string kind = upperCase(asked.value_or(""));
  const auto cells = askedAbout(call);
  const SheetRef sheet = cells.empty() ? context.from : cells.front().sheet;
  const bool oneSheet = std::all_of(cells.begin(), cells.end(),
                                    [&](const RangeRef& range) { return range.sheet == sheet; });
  const bool known = asked && oneSheet && !reach.anywhere;
  if (known && kind == "FILENAME" && context.fileName) return inQuotes(context.fileName(sheet));
  const std::string reference(call.parts.size() == 2 ? trimmed(call.parts[1].calc) : "");
  if (!known || reference.empty()) {  // of the cell that was changed last
    reach.untold = true;
    return std::nullopt;
  }
  if (kind == "ADDRESS") {
    const std::string own = sheet.book == context.from.book ? "" : "[" + sheet.book + "]";
    const std::string before =
        sheet == context.from ? "" : inQuotes(excelSheet(own + sheet.sheet) + "!") + "&";
    return "(" + before + "ADDRESS(MIN(ROW(" + reference + "));MIN(COLUMN(" + reference +
           "));1;TRUE()))";
  }
  if (std::find(looks.begin(), looks.end(), kind) != looks.end()) {
    const auto told = looksOf(kind, call, context);
    if (!told) reach.contents = true;
    return told;
  }
  // Of a range Excel takes the first cell.
  const bool several = call.parts[1].isCells && cellCount(cells.back().areas) > 1;
  return "CELL(" + inQuotes(*asked) + ";" + (several ? "INDEX(" + reference + ";1;1)" : reference) +
         ")";
}

}  // namespace quorin::host::calc
