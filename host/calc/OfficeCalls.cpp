#include "host/calc/OfficeCalls.h"

#include <utility>

#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

OfficeCalls::OfficeCalls(std::shared_ptr<OfficeSource> source, std::chrono::milliseconds patience,
                         RowTraces& traces, RequestMemory& memory, const CallLimits& limits)
    : source_(std::move(source)),
      patience_(patience),
      traces_(traces),
      memory_(memory),
      limits_(limits) {}

OfficeCalls::~OfficeCalls() {
  disconnect();
}

void OfficeCalls::quit() {
  quitting_ = true;
  source_->interrupt();
  const std::lock_guard lock(mutex_);
  if (session_) session_->interrupt();
}

void OfficeCalls::keepReadings(bool keep) {
  keeping_ = keep;
  if (session_) session_->keepReadings(keep);
}

CalcSession* OfficeCalls::livingSession() {
  return !quitting_ && session_ && session_->connection().isAlive() ? session_.get() : nullptr;
}

CalcSession& OfficeCalls::connected() {
  if (quitting_) throw SpreadsheetError(eventErrors::notRunning, "Quorin is quitting");
  if (session_ && session_->connection().isAlive()) return *session_;
  disconnect();
  auto fresh =
      std::make_unique<CalcSession>(source_->open(), patience_, keeperLost_, &traces_, &limits_);
  fresh->keepReadings(keeping_);
  const std::lock_guard lock(mutex_);
  session_ = std::move(fresh);
  return *session_;
}

void OfficeCalls::disconnect() {
  std::unique_ptr<CalcSession> old;
  const std::lock_guard lock(mutex_);
  old.swap(session_);
  old.reset();
}

// A call failed in a way that may mean that a workbook or the office is gone.
void OfficeCalls::forgetRead() {
  if (session_->answers()) {
    session_->workbooks().forget();
    memory_.forget();
    return;
  }
  disconnect();
  if (quitting_) throw SpreadsheetError(eventErrors::notRunning, "Quorin is quitting");
  throw SpreadsheetError(eventErrors::connectionLost, "LibreOffice ended during the call");
}

}  // namespace quorin::host::calc
