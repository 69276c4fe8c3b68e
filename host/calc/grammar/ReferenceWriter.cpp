#include "host/calc/grammar/ReferenceWriter.h"

#include <algorithm>
#include <utility>

#include "kit/value/Unicode.h"

namespace quorin::host::calc {
namespace {

// Every sheet from the first to the last, as far as these are known.
void reachSpan(const SheetPlace& first, const SheetPlace& last, const RangeText& range,
               const ExpressionContext& context, Reach& reach) {
  const auto& all = context.sheets;
  auto from = std::find(all.begin(), all.end(), first.sheet.sheet);
  auto to = std::find(all.begin(), all.end(), last.sheet.sheet);
  if (from == all.end() || to == all.end() || from == to) {
    reach.cells.push_back({first.sheet, {areaOf(range)}});
    return;
  }
  if (to < from) std::swap(from, to);
  for (; from <= to; ++from) {
    reach.cells.push_back({{first.sheet.book, *from}, {areaOf(range)}});
  }
}

std::string endText(const CellText& cell) {
  return write({cell, std::nullopt}, ReferenceStyle::a1, {});
}

}  // namespace

std::optional<SheetPlace> placeOf(const ExpressionContext& context, const std::string& book,
                                  const std::string& sheet) {
  const std::string& own = context.from.book;
  if (!book.empty() && book != own) {
    return context.elsewhere ? context.elsewhere(book, sheet) : std::nullopt;
  }
  if (context.sheets.empty()) return SheetPlace{{own, sheet}, calcSheet(sheet)};
  for (const std::string& known : context.sheets) {
    if (caselesslyEqual(known, sheet)) return SheetPlace{{own, known}, calcSheet(known)};
  }
  return std::nullopt;
}

std::optional<WrittenReference> writeReference(const std::optional<SheetSpan>& span,
                                               const RangeText& range,
                                               const ExpressionContext& context, Reach& reach) {
  std::string first, last;
  if (span) {
    const auto from = placeOf(context, span->book, span->first);
    const auto to = span->last.empty() ? from : placeOf(context, span->book, span->last);
    if (!from || !to) return std::nullopt;
    first = from->text + ".";
    if (!span->last.empty()) last = to->text + ".";
    reachSpan(*from, *to, range, context, reach);
  } else {
    if (context.qualify) first = calcSheet(context.from.sheet) + ".";
    reach.cells.push_back({context.from, {areaOf(range)}});
  }
  WrittenReference written{first + endText(range.from), range.to || !last.empty()};
  if (written.several) written.text += ":" + last + endText(range.to.value_or(range.from));
  return written;
}

}  // namespace quorin::host::calc
