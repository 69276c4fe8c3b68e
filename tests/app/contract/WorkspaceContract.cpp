#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

using testing::IsEmpty;

class WorkspaceContract : public PortContract {
 protected:
  Workspace& workspace = platform().workspace();
};

TEST_F(WorkspaceContract, FindsNoApplicationThatDoesNotRun) {
  EXPECT_THAT(workspace.runningApplications("com.quorin.nobody"), IsEmpty());
}

TEST_F(WorkspaceContract, LeavesAnApplicationThatIsGoneAlone) {
  const auto before = workspace.frontmostApplication();
  workspace.activate({"com.quorin.nobody", 999'999'999, false});
  runFor(std::chrono::milliseconds(100));
  EXPECT_EQ(workspace.frontmostApplication(), before);
}

TEST_F(WorkspaceContract, SaysWhenNobodyOpensAURL) {
  EXPECT_FALSE(workspace.openURL("x-quorin-nobody-opens-this:1"));
  EXPECT_FALSE(workspace.openURL(""));
}

}  // namespace
}  // namespace quorin::contract
