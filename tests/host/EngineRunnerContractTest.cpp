// The script engine as a ScriptRunner.
#include "host/EngineRunner.h"
#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/kit/excel/ScriptRunnerContract.h"

namespace quorin {
namespace {

std::unique_ptr<ScriptRunner> makeEngineRunner() {
  return std::make_unique<host::EngineRunner>(
      std::make_unique<host::ExcelObjectModel>(std::make_unique<fakes::MemorySpreadsheet>()));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Engine, ScriptRunnerContract,
                         testing::Values(ScriptRunnerMaker{"engine", &makeEngineRunner}));

}  // namespace quorin
