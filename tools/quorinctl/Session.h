// Session: a Calc, the call thread that talks to it and a Bridge over both, as long as quorinctl
// runs. Made, used and destroyed on the main thread; what it is asked runs on its own threads and
// is told from there.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/calc/office/OfficeSource.h"
#include "kit/bridge/Bridge.h"
#include "kit/excel/ExcelThread.h"
#include "kit/support/SerialQueue.h"

namespace quorin::host::calc {
class CalcSpreadsheet;
}

namespace quorin::ctl {

class Session {
 public:
  struct Parts {
    std::unique_ptr<host::calc::OfficeSource> office;
    std::unique_ptr<TargetApplication> target;
    std::filesystem::path log;      // the file of the diagnostic log
    std::filesystem::path records;  // the folder of what is marked in workbooks
  };

  // Compiles the handler library; the office may still be starting.
  explicit Session(Parts parts);
  // Returns when all work has ended and the office, if it is a private one, is gone.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  std::optional<std::string> compileError() const { return thread_->compileError(); }

  // Waits until the office answers, and opens the workbook in it. `done` is called on the call
  // thread with nothing or with why that failed.
  using Opened = std::function<void(std::optional<std::string> failure)>;
  void open(const std::optional<std::filesystem::path>& workbook, Opened done);

  // Serves one request; `done` is called on the bridge queue with the reply and the milliseconds
  // that it took.
  using Served = std::function<void(Bridge::Reply reply, double milliseconds)>;
  void serve(std::string verb, Bridge::Args args, Served done);

  // Makes the call in progress and all later ones fail at once.
  void quit();

 private:
  std::unique_ptr<TargetApplication> target_;
  DiagLog log_;
  HighlightStore store_;
  UnhideStore unhide_;
  host::calc::CalcSpreadsheet* spreadsheet_ = nullptr;  // the runner's, on the call thread
  CallThreadPost post_;
  std::unique_ptr<ExcelThread> thread_;
  std::unique_ptr<Bridge> bridge_;
  std::unique_ptr<SerialQueue> queue_;  // last: its work uses everything above
};

}  // namespace quorin::ctl
