// CalcLink: where the user's LibreOffice Calc takes Excel's place in the application.
#pragma once

#include <memory>

#include "kit/excel/ScriptRunner.h"
#include "kit/platform/TargetApplication.h"
#include "kit/support/DiagLog.h"

namespace quorin::host::calc {
class RunningOffice;
}

namespace quorin {

class CalcLink {
 public:
  CalcLink();

  // Runs the handler library with the script engine against the running Calc. The log, which
  // outlives the runners, is told of shown lines that cannot be hidden again.
  ScriptRunnerFactory runnerFactory(DiagLog& log) const;

  // True if that Calc runs.
  std::unique_ptr<TargetApplication> target() const;

 private:
  std::shared_ptr<host::calc::RunningOffice> office_;
};

}  // namespace quorin
