#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

class SaveDialogContract : public PortContract {
 protected:
  using File = std::optional<std::filesystem::path>;

  // What is answered when the user presses the button.
  File answerTo(const std::string& name, const std::string& pressed) {
    std::optional<File> answer;
    pressAlertButtonSoon(pressed);
    platform().saveDialog()->ask(name, [&](const File& file) { answer = file; });
    EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
    return answer.value_or(std::nullopt);
  }
};

TEST_F(SaveDialogContract, AnswersTheFileOfThatName) {
  const File file = answerTo("Quorin's contract review.html", "Save");
  ASSERT_TRUE(file);
  EXPECT_TRUE(file->is_absolute()) << *file;
  EXPECT_EQ(file->filename(), "Quorin's contract review.html");
  EXPECT_FALSE(std::filesystem::exists(*file)) << "writing is not the dialog's";
}

TEST_F(SaveDialogContract, AnswersNoneWhenTheUserWantsNone) {
  EXPECT_EQ(answerTo("Quorin's contract review.csv", "Cancel"), std::nullopt);
}

}  // namespace
}  // namespace quorin::contract
