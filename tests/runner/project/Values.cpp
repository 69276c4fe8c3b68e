// Cases with values that mean something to who lists them.
#include <gtest/gtest.h>
#include <string>

namespace {

class Values : public testing::TestWithParam<std::string> {};
TEST_P(Values, Pass) {}
INSTANTIATE_TEST_SUITE_P(Odd, Values, testing::Values("[", "]]", "a;b", "\\", "# a", "${CXX}"));

TEST(After, Passes) {}

}  // namespace
