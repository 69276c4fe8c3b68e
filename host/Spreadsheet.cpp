// What a spreadsheet answers that does not offer a part of the port.
#include "host/Spreadsheet.h"

#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

[[noreturn]] void refuse(const char* what) {
  throw SpreadsheetError(eventErrors::notUnderstood,
                         std::string("This spreadsheet does not ") + what + ".");
}

}  // namespace

std::optional<RangeRef> Spreadsheet::visibleRange() {
  refuse("tell what its window shows");
}

std::vector<DefinedName> Spreadsheet::definedNames(const std::string&) {
  refuse("list its names");
}

std::optional<bool> Spreadsheet::hidden(const RangeRef&, Axis) {
  refuse("tell what is hidden");
}

void Spreadsheet::setHidden(const RangeRef&, Axis, bool) {
  refuse("hide rows and columns");
}

std::optional<RangeRef> Spreadsheet::visibleCells(const RangeRef&) {
  refuse("tell what is hidden");
}

std::vector<FormatCondition> Spreadsheet::formatConditions(const RangeRef&) {
  refuse("list format conditions");
}

std::string Spreadsheet::addFormatCondition(const RangeRef&, const std::string&) {
  refuse("make format conditions");
}

void Spreadsheet::setConditionFill(const SheetRef&, const std::string&,
                                   const std::optional<Color>&) {
  refuse("colour format conditions");
}

void Spreadsheet::setConditionPriority(const SheetRef&, const std::string&, int) {
  refuse("order format conditions");
}

void Spreadsheet::setConditionRange(const RangeRef&, const std::string&) {
  refuse("move format conditions");
}

void Spreadsheet::deleteCondition(const RangeRef&, const std::string&) {
  refuse("delete format conditions");
}

std::string Spreadsheet::makeWorkbook() {
  refuse("make workbooks");
}

void Spreadsheet::setFormula(const RangeRef&, const std::string&) {
  refuse("write formulas");
}

void Spreadsheet::closeWorkbook(const std::string&) {
  refuse("close workbooks");
}

}  // namespace quorin::host
