// RemoteSpreadsheet: the spreadsheet that the test holds, for the process that is killed. What was
// done to it stays when the process dies. Used on the call thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "tests/kit/crash/Victim.h"

namespace quorin::crash {

class RemoteSpreadsheet : public host::Spreadsheet {
 public:
  explicit RemoteSpreadsheet(Victim& victim) : victim_(victim) {}

  bool isRunning() override { return true; }
  std::string version() override { return get<std::string>("version"); }
  std::vector<std::string> workbooks() override {
    return get<std::vector<std::string>>("workbooks");
  }
  std::vector<std::string> worksheets(const std::string& book) override {
    return get<std::vector<std::string>>("worksheets", book);
  }
  std::optional<std::string> activeWorkbook() override {
    return get<std::optional<std::string>>("activeWorkbook");
  }
  std::optional<host::SheetRef> activeSheet() override {
    return get<std::optional<host::SheetRef>>("activeSheet");
  }
  std::optional<host::RangeRef> activeCell() override {
    return get<std::optional<host::RangeRef>>("activeCell");
  }
  host::SheetRef activeSheetOf(const std::string& book) override {
    return get<host::SheetRef>("activeSheetOf", book);
  }
  void activateSheet(const host::SheetRef& sheet) override { tell("activateSheet", sheet); }
  void scrollTo(const host::RangeRef& range) override { tell("scrollTo", range); }
  std::optional<host::RangeRef> visibleRange() override {
    return get<std::optional<host::RangeRef>>("visibleRange");
  }
  std::optional<host::RangeRef> named(const host::SheetRef& from,
                                      const std::string& name) override {
    return get<std::optional<host::RangeRef>>("named", from, name);
  }
  std::optional<bool> hidden(const host::RangeRef& range, host::Axis axis) override {
    return get<std::optional<bool>>("hidden", range, axis);
  }
  void setHidden(const host::RangeRef& range, host::Axis axis, bool hide) override {
    tell("setHidden", range, axis, hide);
  }
  std::optional<host::RangeRef> visibleCells(const host::RangeRef& range) override {
    return get<std::optional<host::RangeRef>>("visibleCells", range);
  }
  std::vector<host::FormatCondition> formatConditions(const host::RangeRef& range) override {
    return get<std::vector<host::FormatCondition>>("formatConditions", range);
  }
  std::string addFormatCondition(const host::RangeRef& range, const std::string& formula) override {
    return get<std::string>("addFormatCondition", range, formula);
  }
  void setConditionFill(const host::SheetRef& sheet, const std::string& id,
                        const std::optional<host::Color>& fill) override {
    tell("setConditionFill", sheet, id, fill);
  }
  void setConditionPriority(const host::SheetRef& sheet, const std::string& id,
                            int priority) override {
    tell("setConditionPriority", sheet, id, priority);
  }
  void setConditionRange(const host::RangeRef& range, const std::string& id) override {
    tell("setConditionRange", range, id);
  }
  void deleteCondition(const host::RangeRef& range, const std::string& id) override {
    tell("deleteCondition", range, id);
  }

  // What marks have nothing to do with.
  bool isFrontmost() override { unused(); }
  void activate() override { unused(); }
  std::optional<host::Bounds> windowBounds(int) override { unused(); }
  std::optional<host::RangeRef> selection() override { unused(); }
  void goTo(const host::RangeRef&) override { unused(); }
  void select(const host::RangeRef&) override { unused(); }
  void activateWorkbook(const std::string&) override { unused(); }
  void activateCell(const host::RangeRef&) override { unused(); }
  std::optional<host::RangeRef> currentRegion(const host::RangeRef&) override { unused(); }
  std::optional<host::RangeRef> usedRange(const host::SheetRef&) override { unused(); }
  std::optional<host::RangeRef> dependents(const host::RangeRef&, host::DependentLevels) override {
    unused();
  }
  host::Grid<host::CellValue> values(const host::RangeRef&) override { unused(); }
  host::Grid<host::CellValue> formulas(const host::RangeRef&, host::ReferenceStyle) override {
    unused();
  }
  host::Grid<host::CellValue> localFormulas(const host::RangeRef&) override { unused(); }
  host::Grid<std::string> displayedTexts(const host::RangeRef&) override { unused(); }
  host::Evaluation evaluate(const std::string&, const host::SheetRef&) override { unused(); }

 private:
  template <typename Result, typename... Arguments>
  Result get(const char* call, const Arguments&... arguments) {
    Result result{};
    decode(victim_.call(call, {encoded(arguments)...}), result);
    return result;
  }
  template <typename... Arguments>
  void tell(const char* call, const Arguments&... arguments) {
    victim_.call(call, {encoded(arguments)...});
  }
  [[noreturn]] static void unused() { throw host::SpreadsheetError(-1708, "not for marks"); }

  Victim& victim_;
};

}  // namespace quorin::crash
