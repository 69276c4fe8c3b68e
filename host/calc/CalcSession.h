// CalcSession: everything that lives as long as one connection. Dropping it drops every reference
// to the office's objects, and only then the connection.
#pragma once

#include <com/sun/star/frame/XDesktop2.hpp>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "host/calc/cells/CalcNames.h"
#include "host/calc/evaluation/CalcEvaluator.h"
#include "host/calc/evaluation/ScratchWorkbooks.h"
#include "host/calc/marks/MarksKeeper.h"
#include "host/calc/marks/SheetConditions.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/reveal/RowTraces.h"
#include "host/calc/reveal/RowsBack.h"
#include "host/calc/reveal/RowsNote.h"
#include "host/calc/reveal/SheetRows.h"
#include "host/calc/reveal/ShownRows.h"
#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

class CalcSession {
 public:
  // `keeperLost` is told on another thread when the marks keeper died: protectMarks() is due.
  // `traces` and `limits` outlive the session, or there are none.
  CalcSession(const OfficeAddress& office, std::chrono::milliseconds patience,
              std::function<void()> keeperLost = {}, RowTraces* traces = nullptr,
              const CallLimits* limits = nullptr);

  OfficeConnection& connection() { return connection_; }
  CalcWorkbooks& workbooks() { return workbooks_; }
  CalcEvaluator& evaluator() { return evaluator_; }
  CalcNames& names() { return names_; }
  ScratchWorkbooks& scratch() { return scratch_; }
  Workbook& workbook(const std::string& book);  // the user's or a scratch one; -1728
  std::vector<std::string> workbookNames();     // the user's, then the scratch ones
  std::vector<std::string> worksheets(const std::string& book);
  // Work with the conditions of a sheet in the marks keeper's turn, which lasts until it ends, or
  // to the end of the time in which readings are kept. Marks are not added where no keeper can be
  // had: -10000.
  template <typename Work>
  auto withConditions(const SheetRef& sheet, bool adding, Work work) {
    const struct Release {
      CalcSession& office;
      ~Release() { office.releaseConditions(); }
    } release{*this};
    return work(conditions(sheet, adding));
  }
  // Shows rows and remembers them, or hides those that were shown, wherever they are now, but for
  // those that the user has made visible himself. What is known of a row by no means is told by
  // its number. Requests for one sheet that follow each other are one change. Gives what stays
  // visible.
  struct RowRequest {
    AskedRow row;
    bool hide = false;
  };
  struct VisibleRow {
    AskedRow row;
    const char* why;
  };
  std::vector<VisibleRow> setHidden(const std::vector<RowRequest>& requests);
  // Takes back what no request can reach any more: marks on the copy of a sheet or under a name
  // that a workbook or a sheet had before, and shown rows under such a name when somebody looked
  // for it. False when some of it failed, and is to be done again.
  enum class Unreachable { marks, all };
  bool takeBack(Unreachable what);
  // Shown rows that a look for them left visible, because the user had the cursor there, and that
  // no record knows: hides those that he has left.
  void hideLeftRows();
  // Has a keeper watch every workbook with marks or shown rows. Where none can be had they are all
  // taken back, for they would get into files. What fails else is left to the next turn.
  void protectMarks();

  // Makes calls in progress fail. From any thread.
  void interrupt();

  // While readings are kept, what only the user changes is not read twice: which workbooks are
  // open, which sheets they have and what conditions are on a sheet.
  void keepReadings(bool keep);

  // True if the office is still there. Asks it: the news of its end may come late.
  bool answers();

  const std::string& version();
  void openWorkbook(const std::string& path);

 private:
  SheetConditions& conditions(const SheetRef& sheet, bool adding = false);
  void releaseConditions();
  void takeTurn(const Workbook& workbook, bool adding);
  void protectMarks(const std::string& book);
  void takeBackUnprotected(const std::string& book);
  void endTurn();
  std::vector<PlacedMark> marksOn(const SheetRef& sheet);
  void removeUnreachableMarks(const std::string& book);
  void hideUnreachableRows(const std::string& book);
  SheetRows& rowsOf(const SheetRef& sheet, Axis axis);
  void show(const SheetRef& sheet, Axis axis, const std::vector<int>& numbers);
  void hide(const SheetRef& sheet, Axis axis, const std::vector<int>& numbers,
            std::vector<VisibleRow>& visible);
  std::optional<int> tracedRow(const AskedRow& row);
  void forgetTrace(const AskedRow& row);
  // Rows or columns were shown or hidden: the sheet's marks are drawn anew, at the latest when
  // readings are no longer kept.
  void rowsChanged(const SheetRef& sheet);
  void redrawMarks(const SheetRef& sheet);

  OfficeConnection connection_;  // first: it outlives the references below
  const Owner owner_ = Owner::ofThisProcess();
  const css::uno::Reference<css::frame::XDesktop2> desktop_;
  CalcWorkbooks workbooks_;
  CalcEvaluator evaluator_;
  CalcNames names_;
  ScratchWorkbooks scratch_;
  QuietChanges changes_;
  ShownRows shown_;
  RowTraces* const traces_;
  const CallLimits noLimits_ = {};
  const CallLimits& limits_;  // of the call that is being answered
  std::map<std::tuple<std::string, std::string, Axis>, SheetRows> rows_;  // while kept
  std::shared_ptr<Workbook> asked_;  // keeps the last answer of workbook() valid
  MarksKeeper keeper_;
  std::vector<std::unique_ptr<SheetConditions>> earlier_;  // holds their shapes to the turn's end
  std::unique_ptr<SheetConditions> conditions_;            // of the sheet that was last asked for
  std::string turnWorkbook_;                               // its "RuntimeUID"
  std::optional<MarksKeeper::Turn> turn_;
  std::vector<SheetRef> changedRows_;  // sheets, while readings are kept
  bool rowsLeft_ = false;              // there is something to do for hideLeftRows()
  bool keeping_ = false;
  std::string version_;
};

}  // namespace quorin::host::calc
