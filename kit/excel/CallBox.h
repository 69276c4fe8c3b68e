// CallBox: one handler call on its way to the Excel thread and back. Shared by the caller and the
// Excel thread, because a caller whose time is up leaves while the call is still running.
// `result` and `error` are written by the Excel thread before it signals `done`, and read by others
// only after that. `givenUp` is set by the caller who leaves.
#pragma once

#include <atomic>
#include <optional>
#include <utility>

#include "kit/excel/ScriptRunner.h"
#include "kit/excel/Semaphore.h"

namespace quorin {

class CallBox {
 public:
  explicit CallBox(AppleEvent callEvent, bool wasAsked)
      : event(std::move(callEvent)), asked(wasAsked) {}

  const AppleEvent event;
  const bool asked;  // CallTerms::asked
  std::atomic<bool> givenUp = false;
  std::optional<AppleEventDescriptor> result;
  std::optional<ScriptErrorInfo> error;
  Semaphore done;
};

}  // namespace quorin
