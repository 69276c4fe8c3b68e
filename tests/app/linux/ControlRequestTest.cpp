#include <gmock/gmock.h>

#include "app/linux/ControlRequest.h"

namespace quorin {

void PrintTo(const ControlRequest& request, std::ostream* out) {
  *out << request.line();
}

namespace {

TEST(ControlRequests, AreOneLineEach) {
  EXPECT_EQ(parseControlRequest("show"), ControlRequest{});
  EXPECT_EQ(parseControlRequest("show tree"), (ControlRequest{"tree", std::nullopt}));
  EXPECT_EQ(parseControlRequest("show map"), (ControlRequest{"map", std::nullopt}));
  EXPECT_EQ(parseControlRequest("show deps"), (ControlRequest{"deps", std::nullopt}));
  EXPECT_EQ(parseControlRequest("step 1"), (ControlRequest{"", 1}));
  EXPECT_EQ(parseControlRequest("step -1"), (ControlRequest{"", -1}));
}

TEST(ControlRequests, AreNothingElse) {
  for (const char* line : {"", "show ", "show the rest", "Show", "step", "step 2", "step 0",
                           "step 1 ", "tree", "show tree map", "quit"}) {
    EXPECT_EQ(parseControlRequest(line), std::nullopt) << line;
  }
}

}  // namespace
}  // namespace quorin
