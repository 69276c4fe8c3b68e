// Excel as the target, among the applications of the fake session.
#include "app/macos/MacSystem.h"
#include "tests/kit/platform/TargetApplicationContract.h"
#include "tests/macos/runtime/appkit/Hands.h"

namespace quorin {
namespace {

class ExcelWorld : public TargetWorld {
 public:
  ~ExcelWorld() override { end(); }
  TargetApplication& target() override { return target_; }
  void start() override { process_ = startApplication("com.microsoft.Excel"); }
  void end() override { endApplication(process_); }

 private:
  MacTargetApplication target_;
  int process_ = 0;
};

std::unique_ptr<TargetWorld> makeExcelTarget() {
  return std::make_unique<ExcelWorld>();
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Excel, TargetApplicationContract,
                         testing::Values(TargetWorldMaker{"Excel", &makeExcelTarget}));

}  // namespace quorin
