// The fake target of the bridge's tests, held to what every target does.
#include "tests/kit/bridge/BridgeFixture.h"
#include "tests/kit/platform/TargetApplicationContract.h"

namespace quorin {
namespace {

class FakeTargetWorld : public TargetWorld {
 public:
  FakeTargetWorld() { target_.running = false; }
  TargetApplication& target() override { return target_; }
  void start() override { target_.running = true; }
  void end() override { target_.running = false; }

 private:
  FakeTarget target_;
};

std::unique_ptr<TargetWorld> makeFakeTarget() {
  return std::make_unique<FakeTargetWorld>();
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, TargetApplicationContract,
                         testing::Values(TargetWorldMaker{"fake", &makeFakeTarget}));

}  // namespace quorin
