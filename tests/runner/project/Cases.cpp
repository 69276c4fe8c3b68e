// Cases of every end that a test can come to.
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

TEST(Cases, Passes) {}

TEST(Cases, Skips) {
  GTEST_SKIP() << "not here";
}

TEST(Cases, Fails) {
  ADD_FAILURE();
}

TEST(Cases, FailsAndSkips) {
  ADD_FAILURE();
  GTEST_SKIP() << "too late";
}

class Ending : public testing::Test {
 public:
  static void TearDownTestSuite() { FAIL() << "outside of any test"; }
};
TEST_F(Ending, Skips) {
  GTEST_SKIP() << "and fails afterwards";
}

}  // namespace
