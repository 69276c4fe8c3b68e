// CalcSpreadsheet: the port Spreadsheet over LibreOffice Calc. It connects at the first call that
// needs the office, and again after the office has quit, died or been started anew. Used on the
// call thread alone, but for quit().
//
// A call lasts as long as the office takes. It fails with -609 when the office dies under it, and
// with -600 once quit() was called.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/CalcSession.h"
#include "host/calc/HandlerFindings.h"
#include "host/calc/RequestMemory.h"
#include "host/calc/office/OfficeSource.h"
#include "host/calc/reveal/RowTraces.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

class OfficeCalls;

struct CalcOptions {
  // Bounds the wait for a first answer when connecting.
  std::chrono::milliseconds patience = std::chrono::seconds(5);
  // Where it is kept what shown rows are told by when their workbook was closed and opened again.
  // Without it they are then told by their numbers.
  TraceKeeping traces = {};
  // Called on the call thread with the text of what the user's log is to say: which rows were to
  // be hidden again and cannot be.
  std::function<void(const std::string&)> notice = {};
  // Posts work to the call thread, where it runs between handlers and only while the spreadsheet
  // lives. Called on any thread, when the marks keeper was lost. Without it marks that no keeper
  // keeps out of files stay until the next request.
  std::function<void(std::function<void()>)> post = {};
};

class CalcSpreadsheet : public Spreadsheet {
 public:
  explicit CalcSpreadsheet(std::shared_ptr<OfficeSource> source, CalcOptions options = {});
  ~CalcSpreadsheet() override;

  // Makes a call in progress and all later ones fail at once. From any thread, for quitting.
  void quit();

  // Opens a workbook file as the active one. For an office of our own.
  void openWorkbook(const std::string& path);

  void handlerBegins(const CallTerms& terms) override;
  void handlerEnds() override;
  void eventBegins(std::chrono::steady_clock::time_point until) override;
  bool isRunning() override;
  std::string version() override;
  bool isFrontmost() override;
  void activate() override;
  std::vector<std::string> workbooks() override;
  std::vector<std::string> worksheets(const std::string& book) override;
  std::optional<Bounds> windowBounds(int index) override;
  std::optional<std::string> activeWorkbook() override;
  std::optional<SheetRef> activeSheet() override;
  std::optional<RangeRef> activeCell() override;
  std::optional<RangeRef> selection() override;
  SheetRef activeSheetOf(const std::string& book) override;
  void goTo(const RangeRef& range) override;
  void select(const RangeRef& range) override;
  void activateWorkbook(const std::string& book) override;
  void activateSheet(const SheetRef& sheet) override;
  void activateCell(const RangeRef& range) override;
  void scrollTo(const RangeRef& range) override;
  std::optional<RangeRef> named(const SheetRef& from, const std::string& name) override;
  std::optional<RangeRef> currentRegion(const RangeRef& range) override;
  std::optional<RangeRef> usedRange(const SheetRef& sheet) override;
  std::optional<RangeRef> dependents(const RangeRef& range, DependentLevels levels) override;
  Grid<CellValue> values(const RangeRef& range) override;
  Grid<CellValue> formulas(const RangeRef& range, ReferenceStyle style) override;
  Grid<CellValue> localFormulas(const RangeRef& range) override;
  Grid<std::string> displayedTexts(const RangeRef& range) override;
  Evaluation evaluate(const std::string& expression, const SheetRef& from) override;
  std::optional<RangeRef> visibleRange() override;
  std::vector<DefinedName> definedNames(const std::string& book) override;
  std::optional<bool> hidden(const RangeRef& range, Axis axis) override;
  void setHidden(const RangeRef& range, Axis axis, bool hide) override;
  std::optional<RangeRef> visibleCells(const RangeRef& range) override;
  std::vector<FormatCondition> formatConditions(const RangeRef& range) override;
  std::string addFormatCondition(const RangeRef& range, const std::string& formula) override;
  void setConditionFill(const SheetRef& sheet, const std::string& id,
                        const std::optional<Color>& fill) override;
  void setConditionPriority(const SheetRef& sheet, const std::string& id, int priority) override;
  void setConditionRange(const RangeRef& range, const std::string& id) override;
  void deleteCondition(const RangeRef& range, const std::string& id) override;
  std::string makeWorkbook() override;
  void setFormula(const RangeRef& cell, const std::string& formula) override;
  void closeWorkbook(const std::string& book) override;

 private:
  void protectMarks();
  void takeBackUnreachable();
  void flushTraces();
  void setRows();
  template <typename Work>
  auto call(Work work);
  template <typename Work>
  auto change(Work work);
  template <typename Work>
  auto withConditions(const SheetRef& sheet, bool adding, Work work);

  RowTraces traces_;
  RequestMemory memory_;
  CallLimits limits_;
  std::function<void(const std::string&)> notice_;  // or none
  HandlerFindings findings_;
  std::vector<CalcSession::RowRequest> rowRequests_;  // while a handler runs
  bool inHandler_ = false;
  // Not before then; none when nothing is to be done again.
  std::optional<std::chrono::steady_clock::time_point> takeBackAgain_;
  const std::unique_ptr<OfficeCalls> office_;  // last: it ends first
};

}  // namespace quorin::host::calc
