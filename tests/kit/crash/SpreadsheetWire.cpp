#include "tests/kit/crash/SpreadsheetWire.h"

#include <functional>
#include <map>

namespace quorin::crash {

namespace {

using host::Spreadsheet;
using Carry = std::function<JSONValue(Spreadsheet&, const JSONValue&)>;

template <typename Method>
Carry carrying(Method method) {
  return [method](Spreadsheet& spreadsheet, const JSONValue& arguments) {
    return carryOut(spreadsheet, method, arguments);
  };
}

}  // namespace

JSONValue carryOut(Spreadsheet& spreadsheet, const std::string& call, const JSONValue& arguments) {
  static const std::map<std::string, Carry> calls = {
      {"version", carrying(&Spreadsheet::version)},
      {"workbooks", carrying(&Spreadsheet::workbooks)},
      {"worksheets", carrying(&Spreadsheet::worksheets)},
      {"activeWorkbook", carrying(&Spreadsheet::activeWorkbook)},
      {"activeSheet", carrying(&Spreadsheet::activeSheet)},
      {"activeCell", carrying(&Spreadsheet::activeCell)},
      {"activeSheetOf", carrying(&Spreadsheet::activeSheetOf)},
      {"activateSheet", carrying(&Spreadsheet::activateSheet)},
      {"scrollTo", carrying(&Spreadsheet::scrollTo)},
      {"visibleRange", carrying(&Spreadsheet::visibleRange)},
      {"named", carrying(&Spreadsheet::named)},
      {"hidden", carrying(&Spreadsheet::hidden)},
      {"setHidden", carrying(&Spreadsheet::setHidden)},
      {"visibleCells", carrying(&Spreadsheet::visibleCells)},
      {"formatConditions", carrying(&Spreadsheet::formatConditions)},
      {"addFormatCondition", carrying(&Spreadsheet::addFormatCondition)},
      {"setConditionFill", carrying(&Spreadsheet::setConditionFill)},
      {"setConditionPriority", carrying(&Spreadsheet::setConditionPriority)},
      {"setConditionRange", carrying(&Spreadsheet::setConditionRange)},
      {"deleteCondition", carrying(&Spreadsheet::deleteCondition)},
  };
  return calls.at(call)(spreadsheet, arguments);
}

}  // namespace quorin::crash
