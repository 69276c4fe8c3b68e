// The whole road from a verb to a private Calc: bridge, call thread, script engine, object model.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/Address.h"
#include "host/calc/CalcRunner.h"
#include "kit/bridge/Bridge.h"
#include "kit/excel/Semaphore.h"
#include "kit/marks/ShownRowsFile.h"
#include "kit/value/Marshal.h"
#include "tests/calc/ChangingOffice.h"
#include "tests/fakes/LogLines.h"

namespace quorin::host::calc {

class CalcRoad {
 public:
  enum class Traces { kept, none };
  explicit CalcRoad(Traces traces = Traces::kept)
      : keepsTraces_(traces == Traces::kept), thread_(runners(), log_.log()) {}

  // Opens a workbook as the active one. Throws what Calc threw.
  void open(const std::filesystem::path& file) {
    onCallThread([&] { spreadsheet_->openWorkbook(file.string()); });
  }

  // The reply's payload as JSON text; of a failure with a word before it. The arguments are a
  // value: a reference would be bound to the inner list of {Array{...}}.
  std::string ask(const std::string& verb, JSONValue::Array args = {}) {
    const Bridge::Reply reply = bridge_.dispatch(verb, std::move(args));
    return (reply.ok ? "" : "failed ") + Marshal::encode(reply.payload);
  }

  // Of the first rows, or columns, of a sheet: "5 6 7 ", "C D ".
  std::string hiddenRows(const SheetRef& sheet, Axis axis) {
    std::string text;
    onCallThread([&] {
      for (int i = 1; i <= 20; ++i) {
        const bool rows = axis == Axis::rows;
        const Area line = rows ? Area{i, 1, i, maxColumn} : Area{1, i, maxRow, i};
        if (spreadsheet_->hidden({sheet, {line}}, axis) == true)
          text += (rows ? std::to_string(i) : columnLetters(i)) + " ";
      }
    });
    return text;
  }

  // The top left cell of what the window shows: "$A$1".
  std::string firstInView() {
    std::string address;
    onCallThread([&] {
      const Area shown = spreadsheet_->visibleRange().value().areas.at(0);
      address =
          addressText({{shown.firstRow, shown.firstColumn, shown.firstRow, shown.firstColumn}});
    });
    return address;
  }

  // Does something with the spreadsheet on the call thread. Throws what that threw.
  void use(const std::function<void(CalcSpreadsheet&)>& work) {
    onCallThread([&] { work(*spreadsheet_); });
  }

  Bridge& bridge() { return bridge_; }
  ExcelThread& thread() { return thread_; }
  HighlightStore& store() { return store_; }
  UnhideStore& unhidden() { return unhide_; }
  ShownRowsFile& traces() { return traces_; }
  PrivateOffice& office() { return *office_; }
  // As when the user starts Calc again; the first office ends.
  void startOfficeAnew() {
    office_ = std::make_shared<PrivateOffice>();
    source_->replace(office_);
  }
  std::shared_ptr<PrivateOffice> sharedOffice() { return office_; }
  std::vector<std::string> log() { return log_.lines(); }

 private:
  void onCallThread(const std::function<void()>& work) {
    Semaphore done;
    std::string failure;
    post_([&] {
      try {
        work();
      } catch (const std::exception& error) {
        failure = error.what();
      }
      done.signal();
    });
    done.wait();
    if (!failure.empty()) throw std::runtime_error(failure);
  }

  class Running : public TargetApplication {
    bool isRunning() override { return true; }
  };

  ScriptRunnerFactory runners() {
    return [this](CallThreadPost post) {
      post_ = std::move(post);
      CalcOptions options;
      options.patience = std::chrono::seconds(60);
      if (keepsTraces_) options.traces = TraceKeeping::in(traces_);
      options.notice = [this](const std::string& text) { log_.log().log("UNHIDE", text); };
      options.post = post_;
      CalcRunner calc = makeCalcRunner(source_, std::move(options));
      spreadsheet_ = calc.spreadsheet;
      return std::move(calc.runner);
    };
  }

  const bool keepsTraces_;
  std::shared_ptr<PrivateOffice> office_ = std::make_shared<PrivateOffice>();
  const std::shared_ptr<ChangingOffice> source_ = std::make_shared<ChangingOffice>(office_);
  TemporaryFolder folder_;
  fakes::LogLines log_;
  Running target_;
  HighlightStore store_{folder_ / "highlights.json", FileSystem::real(), &log_.log()};
  UnhideStore unhide_{folder_ / "unhidden.json", FileSystem::real(), &log_.log()};
  ShownRowsFile traces_{folder_.path(), FileSystem::real(), &log_.log()};
  CallThreadPost post_;
  CalcSpreadsheet* spreadsheet_ = nullptr;
  ExcelThread thread_;
  Bridge bridge_{thread_, log_.log(), store_, unhide_, target_};
};

}  // namespace quorin::host::calc
