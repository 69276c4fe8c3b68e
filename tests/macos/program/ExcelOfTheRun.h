// ExcelOfTheRun: the Excel beside the program: one for the whole run, whoever compiles scripts for
// it. A spreadsheet in memory, spoiled as Excel for Mac spoils what it answers; it can refuse,
// hang, quit and return, and the user works in it. Any thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "kit/value/JSONValue.h"
#include "script/terms/Application.h"
#include "script/terms/Terminology.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fakes/QuirkyExcel.h"

namespace quorin {

class ExcelOfTheRun {
 public:
  // Tells whether Excel is in front.
  explicit ExcelOfTheRun(std::function<bool()> isInFront);

  // How a script speaks to it.
  std::unique_ptr<script::Application> connection();

  // What the user does, and what he sees: cells as "Sheet!A1:B2".
  void goTo(const std::string& cells);
  void hide(const std::string& cells, bool rows, bool hidden);
  bool isHidden(const std::string& cells, bool rows);
  void mark(const std::string& cells, const std::string& formula);  // with a condition
  JSONValue conditions();  // [[cells, formula, filled], …]
  JSONValue active();      // the active cell

  // One whose dictionary does not have the term. Before anything is compiled.
  void lackTerm(const std::string& term);

  void setRunning(bool running);
  void setPermitted(bool permitted) { permitted_ = permitted; }
  void setBusy(bool busy);  // nothing is answered meanwhile

  // Events while it did not run, each of which would have started it on a Mac. What was under way
  // when it ended could not know.
  int strayEvents() const { return strayEvents_; }

 private:
  class Connection;
  AppleEventReply answer(const AppleEvent& event, std::chrono::milliseconds timeout);
  bool becomesFree(std::chrono::milliseconds timeout);
  host::RangeRef range(const std::string& cells) const;

  const std::function<bool()> isInFront_;
  std::mutex lock_;  // of the spreadsheet
  std::unique_ptr<fakes::QuirkyExcel> excel_;
  fakes::MemorySpreadsheet* sheets_ = nullptr;
  std::unique_ptr<script::Terminology> poorer_;  // where it lacks a term
  std::mutex busyLock_;
  std::condition_variable changed_;
  bool busy_ = false;
  std::atomic<bool> running_{true}, permitted_{true};
  std::atomic<std::chrono::steady_clock::time_point> ended_{};
  std::atomic<int> strayEvents_{0};
};

}  // namespace quorin
