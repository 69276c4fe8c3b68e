// Watches every test of the program: what it leaves alive, and what it was told it does wrong. Both
// fail the test.
#include <gtest/gtest.h>
#include <thread>

#include "tests/macos/runtime/Expected.h"
#include "tests/macos/runtime/foundation/Raise.h"
#include "tests/macos/runtime/objc/Census.h"

extern "C" {
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* pool);
}

namespace quorin {
namespace {

int expected = 0;

class CensusListener : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    before_ = objc::census();
    raised_ = raisedSoFar();
    expected = 0;
    pool_ = objc_autoreleasePoolPush();
  }

  void OnTestEnd(const testing::TestInfo&) override {
    objc_autoreleasePoolPop(pool_);
    EXPECT_EQ(raisedSoFar() - raised_, expected) << "exceptions of Foundation were raised";
    // Threads that were told to end do so in their own time.
    std::string left = leftAlive();
    for (int i = 0; i < 500 && !left.empty(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      left = leftAlive();
    }
    EXPECT_EQ(left, "") << "what the test left alive";
  }

  std::string leftAlive() const {
    std::string left;
    for (const auto& [kind, count] : objc::census()) {
      const auto old = before_.find(kind);
      const long more = count - (old == before_.end() ? 0 : old->second);
      if (more > 0) left += std::to_string(more) + " " + kind + "; ";
    }
    return left;
  }

  std::map<std::string, long> before_;
  int raised_ = 0;
  void* pool_ = nullptr;
};

[[maybe_unused]] const bool listens = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new CensusListener);
  return true;
}();

}  // namespace

void expectRaised(int count) {
  expected = count;
}

}  // namespace quorin
