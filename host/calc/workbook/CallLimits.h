// CallLimits: what bounds the work for one handler call: what the caller laid down for it, and
// until when an answer is waited for. Every loop over something that a workbook holds looks at it,
// so that a call that was given up stops working. Call thread.
#pragma once

#include <chrono>
#include <optional>
#include <utility>

#include "host/Spreadsheet.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

class CallLimits {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void begin(CallTerms terms) {
    terms_ = std::move(terms);
    until_.reset();
  }
  void end() { begin({}); }
  void waitUntil(Time until) { until_ = until; }

  const CallTerms& terms() const { return terms_; }

  // SpreadsheetError -1712 when nobody waits for an answer any more.
  void check() const {
    const bool isOver = (terms_.isOver && terms_.isOver()) ||
                        (until_ && std::chrono::steady_clock::now() > *until_);
    if (isOver) throw SpreadsheetError(eventErrors::timedOut, "AppleEvent timed out.");
  }

 private:
  CallTerms terms_;
  std::optional<Time> until_;  // none: as long as it takes
};

}  // namespace quorin::host::calc
