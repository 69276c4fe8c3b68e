// What other programs and the system do round the application: programs that come to the front, the
// login item, keys.
#include "tests/app/hands/Hands.h"

namespace quorin::contract {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* editor = "org.example.editor";
constexpr const char* painter = "org.example.painter";

class OtherProgramsContract : public PortContract {
 protected:
  ~OtherProgramsContract() override { workspace.observeActivation(nullptr); }

  Workspace::ActivationHandler noting(std::vector<std::string>& told) {
    return [&told](const RunningApplication& one) { told.push_back(one.identifier); };
  }
  bool isInFront(const std::string& identifier) {
    return waitUntil([&] {
      const auto front = workspace.frontmostApplication();
      return front && front->identifier == identifier;
    });
  }

  Workspace& workspace = platform().workspace();
};

TEST_F(OtherProgramsContract, AreFoundWhileTheyRun) {
  {
    const OtherProgram program(editor);
    ASSERT_TRUE(isInFront(editor));
    const auto found = workspace.runningApplications(editor);
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].identifier, editor);
    EXPECT_NE(found[0].processIdentifier, 0);
    EXPECT_FALSE(found[0].isSelf);
    EXPECT_EQ(workspace.frontmostApplication(), found[0]);
    EXPECT_THAT(workspace.runningApplications(painter), IsEmpty());
  }
  EXPECT_TRUE(waitUntil([&] { return workspace.runningApplications(editor).empty(); }));
}

TEST_F(OtherProgramsContract, AreToldOnceAsTheyComeToTheFront) {
  std::vector<std::string> told, toldLater;
  const OtherProgram first(editor);
  ASSERT_TRUE(isInFront(editor));
  runFor(50ms);
  workspace.observeActivation(noting(told));
  const OtherProgram second(painter);
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  first.comeForward();
  ASSERT_TRUE(waitUntil([&] { return told.size() >= 2; }));
  runFor(50ms);
  EXPECT_THAT(told, ElementsAre(painter, editor));
  workspace.observeActivation(noting(toldLater));
  second.comeForward();
  ASSERT_TRUE(waitUntil([&] { return !toldLater.empty(); }));
  workspace.observeActivation(nullptr);
  first.comeForward();
  ASSERT_TRUE(isInFront(editor));
  runFor(50ms);
  EXPECT_THAT(told, SizeIs(2)) << "the second handler has taken its place";
  EXPECT_THAT(toldLater, ElementsAre(painter)) << "and now there is none";
}

TEST_F(OtherProgramsContract, ComeForwardWhenTheyAreAskedTo) {
  const OtherProgram first(editor);
  ASSERT_TRUE(isInFront(editor));
  const OtherProgram second(painter);
  ASSERT_TRUE(isInFront(painter));
  const auto found = workspace.runningApplications(editor);
  ASSERT_THAT(found, SizeIs(1));
  workspace.activate(found[0]);
  EXPECT_TRUE(isInFront(editor));
}

TEST_F(OtherProgramsContract, LeaveNothingInFrontOfThemWhenTheyEnd) {
  {
    const OtherProgram only(editor);
    ASSERT_TRUE(isInFront(editor));
  }
  EXPECT_TRUE(waitUntil([&] {
    const auto front = workspace.frontmostApplication();
    return !front || front->identifier != editor;
  }));
}

TEST_F(OtherProgramsContract, AreToldToAHandlerThatReplacesItself) {
  std::vector<std::string> told, toldLater;
  workspace.observeActivation([&, kept = std::string("still here")](const RunningApplication& one) {
    workspace.observeActivation(noting(toldLater));
    told.push_back(kept + ": " + one.identifier);
  });
  const OtherProgram first(editor);
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_THAT(told, ElementsAre("still here: org.example.editor"));
  const OtherProgram second(painter);
  ASSERT_TRUE(waitUntil([&] { return !toldLater.empty(); }));
  EXPECT_THAT(toldLater, ElementsAre(painter));
  EXPECT_THAT(told, SizeIs(1));
}

class LoginItemChangesContract : public PortContract {
 protected:
  ~LoginItemChangesContract() override {
    refuseLoginItem(false);
    item.unregisterItem();
  }

  LoginItem& item = *platform().loginItem();
};

TEST_F(LoginItemChangesContract, ComesAndGoes) {
  EXPECT_EQ(item.registerItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::enabled);
  EXPECT_EQ(item.registerItem(), std::nullopt) << "it is there already";
  EXPECT_EQ(item.status(), LoginItemStatus::enabled);
  EXPECT_EQ(item.unregisterItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
}

TEST_F(LoginItemChangesContract, SaysWhatStandsInTheWay) {
  refuseLoginItem(true);
  const std::optional<std::string> error = item.registerItem();
  ASSERT_TRUE(error);
  EXPECT_NE(*error, "");
  EXPECT_NE(item.status(), LoginItemStatus::enabled);
  refuseLoginItem(false);
  EXPECT_EQ(item.registerItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::enabled);
}

class UserInputContract : public PortContract {
 protected:
  ~UserInputContract() override {
    if (input) input->observe(nullptr);
  }

  bool hears(const int& count) {
    return waitUntil([&] { return count > 0; });
  }

  UserInput* const input = platform().userInput();
};

TEST_F(UserInputContract, TellsThatSomethingWasPressedWhereThePlatformTellsIt) {
  ASSERT_EQ(input != nullptr, traits().tellsOfUserInput);
  int first = 0, second = 0;
  const auto replacing = [&, kept = std::string("a handler that replaces itself")] {
    input->observe([&] { ++second; });
    first += kept == "a handler that replaces itself" ? 1 : 100;
  };
  if (input) input->observe(replacing);
  pressAnyKey();
  EXPECT_EQ(input && hears(first), traits().tellsOfUserInput);
  EXPECT_EQ(first, traits().tellsOfUserInput ? 1 : 0);
  runFor(50ms);
  second = 0;
  pressAnyKey();
  EXPECT_EQ(input && hears(second), traits().tellsOfUserInput);
  EXPECT_EQ(first, traits().tellsOfUserInput ? 1 : 0);
}

}  // namespace
}  // namespace quorin::contract
