#include "host/calc/evaluation/TextReference.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>

#include "host/Address.h"
#include "host/SheetPrefix.h"
#include "host/calc/cells/CalcLookup.h"
#include "host/calc/cells/CalcTables.h"
#include "host/calc/evaluation/ExpressionScope.h"
#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// True if the workbook's own INDIRECT reads text in Excel's grammar, as in a file of Excel's.
bool readsAsExcel(const Workbook& workbook) {
  constexpr sal_Int16 excelA1 = 2;
  const Reference<css::lang::XMultiServiceFactory> factory(workbook.document, UNO_QUERY_THROW);
  const Reference<XPropertySet> settings(factory->createInstance("com.sun.star.document.Settings"),
                                         UNO_QUERY_THROW);
  sal_Int16 syntax = -1;
  settings->getPropertyValue("SyntaxStringRef") >>= syntax;
  return syntax == excelA1;
}

bool isWord(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isWordCharacter);
}

// True if the text has the form of a reference, but there is no such table, sheet or name.
bool namesNothing(CalcWorkbooks& workbooks, const std::string& text, const SheetRef& from,
                  const CallLimits& limits) {
  const std::shared_ptr<Workbook> workbook = workbooks.named(from.book);
  if (const auto bracket = text.find('['); bracket != std::string::npos) {
    const std::string table = text.substr(0, bracket);
    return isWord(table) && !tableArea(*workbook, table, {.all = true}, std::nullopt, limits);
  }
  const auto split = splitSheetPrefix(text);
  if (!split || split->book) return false;
  const auto sheet = findSheet(workbooks, from.book, split->sheet.value_or(from.sheet));
  const bool isCells = parseA1(split->rest).has_value();
  if (!sheet) return isCells || isWord(split->rest);
  return !isCells && isWord(split->rest) &&
         !nameContent(*workbook, sheet->sheet, std::string(split->rest));
}

}  // namespace

std::optional<RangeRef> asReference(CalcWorkbooks& workbooks, std::string_view text,
                                    const SheetRef& from, const CallLimits& limits) {
  const auto trim = [&text] {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  };
  trim();
  if (text.starts_with('=')) text.remove_prefix(1);
  trim();
  if (text.starts_with('(') && text.find(')') == text.size() - 1) {
    text = text.substr(1, text.size() - 2);
  }
  const auto split = splitSheetPrefix(text);
  if (!split) return std::nullopt;
  const auto areas = parseA1(split->rest);
  if (!areas && !isWord(split->rest)) return std::nullopt;
  const auto sheet =
      findSheet(workbooks, split->book.value_or(from.book), split->sheet.value_or(from.sheet));
  if (!sheet) return std::nullopt;
  if (areas) return RangeRef{*sheet, *areas};
  return findNamed(*workbooks.named(sheet->book), sheet->sheet, std::string(split->rest), limits);
}

std::optional<std::string> namedByText(CalcWorkbooks& workbooks, const std::string& text,
                                       const SheetRef& from, const CallLimits& limits) {
  const std::shared_ptr<Workbook> workbook = workbooks.named(from.book);
  if (text.empty()) return "";
  if (text.find_first_of(" =(") == 0 || !readsAsExcel(*workbook)) return std::nullopt;
  auto range = asReference(workbooks, text, from, limits);
  if (!range) range = tablePart(*workbook, text, limits);
  if (range && range->areas.size() == 1) return excelText(*range, from.book);
  return namesNothing(workbooks, text, from, limits) ? std::optional<std::string>("")
                                                     : std::nullopt;
}

}  // namespace quorin::host::calc
