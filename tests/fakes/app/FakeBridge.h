// FakeBridge: a bridge without Excel. Calls go to one journal; answers are set by the test. As the
// real one it is called from the bridge queue.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kit/bridge/PanelBridge.h"
#include "kit/excel/ExcelError.h"
#include "kit/value/Marshal.h"

namespace quorin {

class FakeBridge : public PanelBridge {
 public:
  explicit FakeBridge(std::vector<std::string>& journal) : journal_(journal) {}

  PanelBridge::Reply dispatch(const std::string& verb, const JSONValue::Array& args) override {
    journal_.push_back("dispatch " + verb + " " + Marshal::encode(args));
    const auto found = replies.find(verb);
    return found == replies.end() ? PanelBridge::Reply{true, verb} : found->second;
  }

  // Polls are answered in the order given; none left: a failure, as nothing at all is.
  JSONValue pollCell() override {
    ++polls;
    if (answers.empty()) throw ExcelError(ExcelError::timedOut, "timed out");
    const std::optional<JSONValue> answer = answers.front();
    answers.pop_front();
    if (!answer) throw ExcelError(-600, "not running");
    return *answer;
  }

  JSONValue probe() override {
    journal_.push_back("probe");
    return probed;
  }

  void setArgSeparator(const std::string& separator) override {
    journal_.push_back("argSeparator " + separator);
  }
  void restoreStranded() override { journal_.push_back("restoreStranded"); }
  std::chrono::system_clock::time_point lastProgrammaticNav() const override { return navigated; }
  void setOnActivatedCell(ActivatedCell handler) override { activatedCell = std::move(handler); }
  Recorded leftToTakeBack() const override { return recorded; }
  void clearMarksForTerminate() override {
    journal_.push_back("clearMarksForTerminate");
    if (onClearMarksForTerminate) onClearMarksForTerminate();
  }

  std::map<std::string, PanelBridge::Reply> replies;
  std::deque<std::optional<JSONValue>> answers;
  int polls = 0;
  JSONValue probed;
  std::chrono::system_clock::time_point navigated = std::chrono::system_clock::time_point::min();
  ActivatedCell activatedCell;
  Recorded recorded;
  std::function<void()> onClearMarksForTerminate;

 private:
  std::vector<std::string>& journal_;
};

}  // namespace quorin
