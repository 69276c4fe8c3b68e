#include "host/calc/marks/UserRules.h"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/ConditionEntryType.hpp>
#include <com/sun/star/sheet/ConditionFormatOperator.hpp>
#include <com/sun/star/sheet/XConditionEntry.hpp>
#include <com/sun/star/sheet/XConditionalFormat.hpp>
#include <com/sun/star/sheet/XConditionalFormats.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>

#include "host/Address.h"
#include "host/calc/evaluation/CellLooks.h"
#include "host/calc/marks/MarkText.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
namespace Operator = css::sheet::ConditionFormatOperator;
namespace EntryType = css::sheet::ConditionEntryType;

constexpr const char* idPrefix = "Rule ";

template <typename T>
T propertyOf(const Reference<XPropertySet>& properties, const char* name, T value) {
  properties->getPropertyValue(rtl::OUString::createFromAscii(name)) >>= value;
  return value;
}

ConditionKind kindOf(sal_Int32 comparison) {
  if (comparison <= Operator::NOT_BETWEEN) return ConditionKind::cellValue;
  if (comparison <= Operator::UNIQUE) return ConditionKind::uniqueValues;
  if (comparison <= Operator::BOTTOM_N_PERCENT) return ConditionKind::top10;
  if (comparison <= Operator::BELOW_EQUAL_AVERAGE) return ConditionKind::aboveAverage;
  if (comparison == Operator::ERROR) return ConditionKind::errors;
  if (comparison == Operator::NO_ERROR) return ConditionKind::noErrors;
  if (comparison <= Operator::NOT_CONTAINS) return ConditionKind::text;
  return ConditionKind::expression;
}

bool hasFormula(ConditionKind kind) {
  return kind == ConditionKind::cellValue || kind == ConditionKind::expression ||
         kind == ConditionKind::text;
}

// A workbook that was saved with Excel's marks in it holds them as rules, which nobody but the user
// can take out here. Written so, such a rule still means the same and is not taken for a mark.
std::string formulaOf(const Reference<XPropertySet>& entry) {
  const std::string formula = "=" + toText(propertyOf(entry, "Formula1", rtl::OUString()));
  return formula == markFormula ? "=(" + formula.substr(1) + ")" : formula;
}

std::optional<Color> fillOf(const Reference<css::sheet::XSpreadsheetDocument>& document,
                            const Reference<XPropertySet>& entry) {
  const Reference<css::container::XNameAccess> styles = cellStylesOf(document);
  const auto name = propertyOf(entry, "StyleName", rtl::OUString());
  if (!styles->hasByName(name)) return std::nullopt;
  const Reference<XPropertySet> style(styles->getByName(name), UNO_QUERY_THROW);
  const auto color = propertyOf(style, "CellBackColor", sal_Int32{-1});
  if (color < 0) return std::nullopt;
  return Color{color >> 16 & 255, color >> 8 & 255, color & 255};
}

FormatCondition conditionOf(const Reference<css::sheet::XSpreadsheetDocument>& document,
                            const Reference<css::sheet::XConditionEntry>& entry) {
  FormatCondition condition;
  switch (entry->getType()) {
    case EntryType::COLORSCALE:
      condition.kind = ConditionKind::colorScale;
      break;
    case EntryType::DATABAR:
      condition.kind = ConditionKind::dataBar;
      break;
    case EntryType::ICONSET:
      condition.kind = ConditionKind::iconSet;
      break;
    case EntryType::DATE:
      condition.kind = ConditionKind::timePeriod;
      break;
    default: {
      const Reference<XPropertySet> properties(entry, UNO_QUERY_THROW);
      condition.kind = kindOf(propertyOf(properties, "Operator", Operator::EXPRESSION));
      if (hasFormula(condition.kind)) condition.formula = formulaOf(properties);
      condition.fill = fillOf(document, properties);
    }
  }
  return condition;
}

std::vector<Area> areasOf(const Reference<css::sheet::XConditionalFormat>& format) {
  const Reference<css::sheet::XSheetCellRanges> ranges(
      Reference<XPropertySet>(format, UNO_QUERY_THROW)->getPropertyValue("Range"), UNO_QUERY_THROW);
  std::vector<Area> areas;
  for (const auto& address : ranges->getRangeAddresses()) areas.push_back(areaOf(address));
  return areas;
}

}  // namespace

UserRules::UserRules(const Workbook& workbook, const Reference<css::sheet::XSpreadsheet>& sheet,
                     const CallLimits& limits)
    : document_(workbook.document) {
  const Reference<css::sheet::XConditionalFormats> formats(
      Reference<XPropertySet>(sheet, UNO_QUERY_THROW)->getPropertyValue("ConditionalFormats"),
      UNO_QUERY_THROW);
  for (const auto& format : formats->getConditionalFormats()) {
    limits.check();
    formats_.push_back({format, areasOf(format), count_ + 1, format->getCount(), {}});
    count_ += formats_.back().count;
  }
}

std::vector<FormatCondition> UserRules::rulesOf(const Format& format,
                                                const CallLimits& limits) const {
  std::vector<FormatCondition> rules;
  for (sal_Int32 i = 0; i < format.count; ++i) {
    limits.check();
    FormatCondition rule = conditionOf(document_, {format.format->getByIndex(i), UNO_QUERY_THROW});
    rule.priority = format.first + i;
    rule.id = idPrefix + std::to_string(rule.priority);
    rule.areas = format.areas;
    rules.push_back(std::move(rule));
  }
  return rules;
}

std::vector<FormatCondition> UserRules::touching(const std::vector<Area>& range,
                                                 const CallLimits& limits) {
  std::vector<FormatCondition> rules;
  for (Format& format : formats_) {
    if (!touch(format.areas, range)) continue;
    if (format.rules.empty()) format.rules = rulesOf(format, limits);
    rules.insert(rules.end(), format.rules.begin(), format.rules.end());
  }
  return rules;
}

bool isUserRule(const std::string& id) {
  return id.starts_with(idPrefix);
}

}  // namespace quorin::host::calc
