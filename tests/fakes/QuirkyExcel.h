// QuirkyExcel: stands before the object model and spoils its answers the way Excel for Mac does,
// each quirk by its own switch. It also keeps a record of the events and fails at the n-th one.
// Used on the thread of the script.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "script/Application.h"

namespace quorin::fakes {

struct ExcelQuirks {
  // value2 of one column leaves out the rows with errors: one survivor comes bare, none as {}.
  bool dropsErrorRows = false;
  // value2 of several columns with an error in the first one kills Excel: -609 until relaunched.
  bool diesOfFirstColumnErrors = false;
  bool writesFormulasAsText = false;   // formula of several cells: constants are text
  bool flattensSingleRows = false;     // one row is a plain list
  bool losesBlanks = false;            // value2 of a blank cell is missing value
  bool losesLongText = false;          // evaluating more than 255 characters is missing value
  bool hidesEvaluationErrors = false;  // evaluating to an error is missing value, not -1708
};

class QuirkyExcel : public script::Application {
 public:
  QuirkyExcel(std::unique_ptr<script::Application> excel, ExcelQuirks switches);

  ExcelQuirks quirks;
  void failAt(int number, AppleEventError error);  // counts from 1, since the start
  void relaunch() { dead_ = false; }
  const std::vector<AppleEvent>& events() const { return events_; }

  std::string_view name() const override { return excel_->name(); }
  const script::Terminology& terminology() const override { return excel_->terminology(); }
  bool isRunning() override { return !dead_ && excel_->isRunning(); }
  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds timeout) override;

 private:
  AppleEventReply died();
  AppleEventReply afterRead(FourCharCode property, AppleEventReply reply);

  std::unique_ptr<script::Application> excel_;
  std::vector<AppleEvent> events_;
  std::map<int, AppleEventError> failures_;
  bool dead_ = false;
};

}  // namespace quorin::fakes
