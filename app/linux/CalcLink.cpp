#include "app/linux/CalcLink.h"

#include "host/EngineRunner.h"
#include "host/ExcelObjectModel.h"
#include "host/calc/CalcApplication.h"
#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/RunningOffice.h"
#include "kit/marks/ShownLinesFile.h"
#include "kit/support/QXConfig.h"

namespace quorin {

using host::calc::CalcApplication;
using host::calc::CalcSpreadsheet;
using host::calc::RunningOffice;
using host::calc::TraceKeeping;

CalcLink::CalcLink() : office_(std::make_shared<RunningOffice>()) {}

ScriptRunnerFactory CalcLink::runnerFactory(DiagLog& log) const {
  return [office = office_, &log](const CallThreadPost& post) -> std::unique_ptr<ScriptRunner> {
    auto calc = std::make_unique<CalcSpreadsheet>(office);
    calc->keepTracesIn(TraceKeeping::in(
        ShownLinesFile(QXConfig::defaultURL().parent_path(), FileSystem::real(), &log)));
    calc->onNotice([&log](const std::string& text) { log.log("UNHIDE", text); });
    // Work that is posted is done while there is a runner, and so this.
    calc->onKeeperLost([post, there = calc.get()] { post([there] { there->protectMarks(); }); });
    auto excel = std::make_unique<host::ExcelObjectModel>(std::move(calc));
    return std::make_unique<host::EngineRunner>(std::move(excel));
  };
}

std::unique_ptr<TargetApplication> CalcLink::target() const {
  return std::make_unique<CalcApplication>(office_);
}

}  // namespace quorin
