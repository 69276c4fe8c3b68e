// CallBox: one handler call on its way to the Excel thread and back. Shared by the caller and the
// Excel thread, because a caller whose time is up leaves while the call is still running.
// `result` and `error` are written by the Excel thread before it signals `done`, and read by others
// only after that.
#pragma once

#include <optional>
#include <utility>

#include "kit/excel/ScriptRunner.h"
#include "kit/excel/Semaphore.h"

namespace quorin {

class CallBox {
 public:
  explicit CallBox(AppleEvent callEvent) : event(std::move(callEvent)) {}

  const AppleEvent event;
  std::optional<AppleEventDescriptor> result;
  std::optional<ScriptErrorInfo> error;
  Semaphore done;
};

}  // namespace quorin
