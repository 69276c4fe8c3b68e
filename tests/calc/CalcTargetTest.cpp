// Calc as the target, found among processes that are files in a folder.
#include <fstream>

#include "host/calc/office/CalcApplication.h"
#include "host/calc/office/RunningOffice.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/kit/platform/TargetApplicationContract.h"

namespace quorin {
namespace {

using host::calc::CalcApplication;
using host::calc::OfficeDiscovery;
using host::calc::RunningOffice;

class CalcWorld : public TargetWorld {
 public:
  TargetApplication& target() override { return target_; }
  void start() override {
    const auto process = proc_ / "5";
    std::filesystem::create_directory(process);
    std::ofstream(process / "comm") << "soffice.bin\n";
    std::ofstream(process / "cmdline") << "soffice.bin" << '\0' << "--calc" << '\0';
    std::ofstream(process / "maps") << "7f00 r-xp /opt/office/program/libsclo.so\n";
    std::filesystem::create_symlink("/opt/office/program/soffice.bin", process / "exe");
  }
  void end() override { std::filesystem::remove_all(proc_ / "5"); }

 private:
  const TemporaryFolder proc_;
  CalcApplication target_{std::make_shared<RunningOffice>(
      std::make_shared<OfficeDiscovery>(proc_.path(), OfficeDiscovery::Session{}))};
};

std::unique_ptr<TargetWorld> makeCalc() {
  return std::make_unique<CalcWorld>();
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Calc, TargetApplicationContract,
                         testing::Values(TargetWorldMaker{"Calc", &makeCalc}));

}  // namespace quorin
