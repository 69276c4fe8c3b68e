#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

class AlertsContract : public PortContract {
 protected:
  // Which button the alert says was pressed.
  std::size_t answerTo(const Alert& alert, const std::string& pressed) {
    std::optional<std::size_t> answer;
    pressAlertButtonSoon(pressed);
    platform().alerts().show(alert, [&](std::size_t button) { answer = button; });
    EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
    return answer.value_or(99);
  }
};

TEST_F(AlertsContract, AnswersThePressedButton) {
  const Alert alert{"Quorin crashed last time", "Send a report?", {"Report…", "Not Now"}};
  EXPECT_EQ(answerTo(alert, "Report…"), 0u);
  EXPECT_EQ(answerTo(alert, "Not Now"), 1u);
}

TEST_F(AlertsContract, HasAnOKButtonWhereNoneIsGiven) {
  EXPECT_EQ(answerTo({"There is no updater", "", {}}, "OK"), 0u);
}

TEST_F(AlertsContract, ShowsOneAfterTheOther) {
  EXPECT_EQ(answerTo({"First", "", {"One", "Two", "Three"}}, "Three"), 2u);
  EXPECT_EQ(answerTo({"Second", "", {"One", "Two", "Three"}}, "Two"), 1u);
}

}  // namespace
}  // namespace quorin::contract
