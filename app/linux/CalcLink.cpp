#include "app/linux/CalcLink.h"

#include "host/calc/CalcRunner.h"
#include "host/calc/office/CalcApplication.h"
#include "host/calc/office/RunningOffice.h"
#include "kit/marks/ShownRowsFile.h"
#include "kit/support/QXConfig.h"

namespace quorin {

using host::calc::CalcApplication;
using host::calc::CalcOptions;
using host::calc::makeCalcRunner;
using host::calc::RunningOffice;
using host::calc::TraceKeeping;

CalcLink::CalcLink() : office_(std::make_shared<RunningOffice>()) {}

ScriptRunnerFactory CalcLink::runnerFactory(DiagLog& log) const {
  return [office = office_, &log](const CallThreadPost& post) -> std::unique_ptr<ScriptRunner> {
    const ShownRowsFile traces(QXConfig::defaultURL().parent_path(), FileSystem::real(), &log);
    CalcOptions options;
    options.traces = TraceKeeping::in(traces);
    options.notice = [&log](const std::string& text) { log.log("UNHIDE", text); };
    options.post = post;
    return makeCalcRunner(office, std::move(options)).runner;
  };
}

std::unique_ptr<TargetApplication> CalcLink::target() const {
  return std::make_unique<CalcApplication>(office_);
}

}  // namespace quorin
