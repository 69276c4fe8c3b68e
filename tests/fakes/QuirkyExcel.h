// QuirkyExcel: stands before the object model and spoils its answers the way Excel for Mac does,
// each quirk by its own switch. It also keeps a record of the events and fails at the n-th one.
// Used on the thread of the script.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "script/terms/Application.h"

namespace quorin::fakes {

// What one release or another answers where there is nothing to give.
enum class NothingFound { notUnderstood, parameterError, noSuchObject, missingValue };

struct ExcelQuirks {
  // value2 of one column leaves out the rows with errors: one survivor comes bare, none as {}.
  bool dropsErrorRows = false;
  // value2 of several columns with an error in the first one kills Excel: -609 until relaunched.
  bool diesOfFirstColumnErrors = false;
  bool writesFormulasAsText = false;   // formula of several cells: constants are text
  bool flattensSingleRows = false;     // one row is a plain list
  bool listsSingleValues = false;      // value2 of one cell is a list of one row
  bool losesBlanks = false;            // value2 of a blank cell is missing value
  bool losesLongText = false;          // evaluating more than 255 characters is missing value
  bool hidesEvaluationErrors = false;  // evaluating to an error is missing value, not -1708

  // Evaluating or setting text above this length is where Excel fails without a word.
  std::size_t longestText = 255;
  // Setting a formula of more than 255 characters does nothing, or cuts it, without an error.
  bool ignoresLongFormulas = false, cutsLongFormulas = false;
  bool cutsLongAddresses = false;        // get address ends after 255 characters
  bool refusesLongAddresses = false;     // range "..." with more than 255 characters is -1728
  bool separatesWithSemicolons = false;  // the areas in range "..." are parted by ";" alone
  bool readsUpToTheComma = false;        // of range "..." only what stands before the first ","
  bool baresSingles = false;             // a collection of one is a bare value
  bool missesUnknownElements = false;    // missing value instead of -1728
  bool refusesBulkReferences = false;    // references of every named item is -1700
  bool hidesRegions = false;             // current region is -50, as on a protected sheet
  bool selectsAShape = false;            // selection is no range until a range is selected: -1728
  bool makesOnlyAtEnd = false, makesOnlyAtRange = false;  // format conditions
  bool forgetsWhatItMade = false;                         // make has no result
  bool refusesToMoveConditions = false;                   // modify applies to range is -1708
  bool ignoresMoves = false;                              // modify applies to range does nothing
  bool listsDependents = false;                           // direct dependents is a list of ranges
  bool activatesOnlyInFront = false;                      // activate object is -10000 otherwise
  // Asking a workbook for a worksheet that it lacks opens a file dialog. Until the user answers it
  // every event times out.
  bool asksForMissingSheets = false;
  NothingFound noDependents = NothingFound::notUnderstood;
  NothingFound noVisibleCells = NothingFound::parameterError;
};

class QuirkyExcel : public script::Application {
 public:
  QuirkyExcel(std::unique_ptr<script::Application> excel, ExcelQuirks switches);

  ExcelQuirks quirks;
  // Events count from 1, since the start or the last forget(). The one that fails is not carried
  // out; the one whose answer is lost is.
  void failAt(int number, AppleEventError error);
  void loseAnswerOf(int number, AppleEventError error);
  // What the user does just before the event is carried out.
  void meanwhile(int number, std::function<void()> act);
  void forget();  // the record, the failures and what the user does
  void relaunch() { dead_ = dialog_ = false; }
  bool showsDialog() const { return dialog_; }
  const std::vector<AppleEvent>& events() const { return events_; }

  std::string_view name() const override { return excel_->name(); }
  const script::Terminology& terminology() const override { return excel_->terminology(); }
  bool isRunning() override { return !dead_ && excel_->isRunning(); }
  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) override;

 private:
  AppleEventReply died();
  AppleEventReply answer(const AppleEvent& event, std::chrono::milliseconds timeout);
  std::optional<AppleEventReply> refusal(const AppleEvent& event);
  bool opensDialog(const AppleEventDescriptor& specifier, std::chrono::milliseconds timeout);

  std::unique_ptr<script::Application> excel_;
  std::vector<AppleEvent> events_;
  std::map<int, AppleEventError> failures_, losses_;
  std::map<int, std::function<void()>> meanwhile_;
  bool dead_ = false, dialog_ = false;
};

}  // namespace quorin::fakes
