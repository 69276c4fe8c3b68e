// What happens at the edges between the system and the program: exceptions of both languages, work
// while an alert is open, and the application that is opened again.
#include <thread>

#import "app/macos/AppleScriptRunner.h"
#import "app/macos/Edge.h"
#import "app/macos/ScriptThread.h"
#include "tests/app/contract/ContractWorld.h"
#include "tests/macos/runtime/Expected.h"
#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Raise.h"
#include "tests/macos/runtime/objc/Census.h"

namespace quorin {
namespace {

using contract::platform;

TEST(Edge, LogsWhatIsThrownInEitherLanguage) {
  expectRaised(1);
  const std::size_t before = loggedSoFar().size();
  atEdge("one", [] { throw std::runtime_error("of C++"); });
  atEdge("two", [] { raise("NSRangeException", "of Objective-C"); });
  atEdge("three", [] { throw 3; });
  const std::vector<std::string> all = loggedSoFar();
  const std::vector<std::string> told{"one: of C++", "two: NSRangeException: of Objective-C",
                                      "three: an exception of an unknown kind"};
  EXPECT_EQ(std::vector(all.begin() + static_cast<long>(before), all.end()), told);
}

TEST(ScriptThread, AnswersAnExceptionAsAnError) {
  expectRaised(1);
  QXScriptThread* thread = [[QXScriptThread alloc] init];
  EXPECT_EQ([thread compileSource:@"on a9()\nreturn 1\nend a9\n"], nil);
  NSDictionary<NSString*, id>* info = nil;
  // Not an event: it raises inside of the call.
  EXPECT_EQ([thread performEvent:[NSAppleEventDescriptor nullDescriptor] errorInfo:&info], nil);
  ASSERT_NE(info, nil);
  EXPECT_TRUE([info[NSAppleScriptErrorMessage] isEqual:@"this is no event"]);
  EXPECT_EQ([thread compileSource:@"on a9()\nreturn 1\nend a9\n"], nil) << "it still works";
  [thread stop];
}

// Also where somebody still holds the object, and where the thread is between two turns of its
// loop.
TEST(ScriptThread, LetsItsScriptGoOnItsOwnThread) {
  for (int turn = 0; turn < 20; ++turn) {
    QXScriptThread* thread = [[QXScriptThread alloc] init];
    EXPECT_EQ([thread compileSource:@"on a9()\nreturn 1\nend a9\n"], nil);
    [thread stop];
    for (int i = 0; i < 500 && objc::census()["NSAppleScript"] > 0; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(objc::census()["NSAppleScript"], 0);
  }
}

class MacAlertsTest : public contract::PortContract {};

TEST_F(MacAlertsTest, LeavesTheMainQueueGoingWhileOneIsOpen) {
  std::string order;
  bool answered = false;
  platform().mainLoop().post([&] {
    platform().alerts().show({"A question", "", {"Yes", "No"}}, [&](std::size_t) {
      order += "answer";
      answered = true;
    });
    platform().mainLoop().post([&] {
      order += "reply ";
      contract::pressAlertButtonSoon("Yes");
    });
  });
  EXPECT_TRUE(waitUntil([&] { return answered; }));
  EXPECT_EQ(order, "reply answer");
}

TEST_F(MacAlertsTest, ShowsASecondOneAfterTheFirst) {
  std::string order;
  platform().alerts().show({"First", "", {"One"}}, [&](std::size_t) { order += "one "; });
  platform().alerts().show({"Second", "", {"Two"}}, [&](std::size_t) { order += "two"; });
  contract::pressAlertButtonSoon("Two");
  contract::pressAlertButtonSoon("One");
  EXPECT_TRUE(waitUntil([&] { return order.size() >= 7; }));
  EXPECT_EQ(order, "one two");
}

TEST_F(MacAlertsTest, ShowsTheQuestionAndItsExplanation) {
  std::optional<std::size_t> answer;
  platform().alerts().show({"Remove it?", "It cannot be undone.", {"Remove", "Keep"}},
                           [&](std::size_t button) { answer = button; });
  std::string question, explanation;
  platform().mainLoop().post([&] {
    // The alert opens before the main queue is served again.
    platform().mainLoop().post([&] {
      NSAlert* alert = shownAlert();
      question = alert.messageText.UTF8String ? alert.messageText.UTF8String : "";
      explanation = alert.informativeText.UTF8String ? alert.informativeText.UTF8String : "";
      contract::pressAlertButtonSoon("Keep");
    });
  });
  EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
  EXPECT_EQ(question, "Remove it?");
  EXPECT_EQ(explanation, "It cannot be undone.");
  EXPECT_EQ(answer, 1u);
}

// As when the application is told to end its modal panels.
TEST_F(MacAlertsTest, AnswersTheLastButtonWhereItIsStoppedFromElsewhere) {
  std::optional<std::size_t> answer;
  platform().alerts().show({"A question", "", {"One", "Two", "Three"}},
                           [&](std::size_t button) { answer = button; });
  platform().mainLoop().post([] { platform().mainLoop().post([] { stopAlert(); }); });
  EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
  EXPECT_EQ(answer, 2u);
}

class MacSaveDialogTest : public contract::PortContract {};

TEST_F(MacSaveDialogTest, LeavesTheMainQueueGoingWhileItIsOpen) {
  std::string order;
  bool answered = false;
  contract::pressAlertButtonSoon("Cancel");
  platform().mainLoop().post([&] {
    platform().saveDialog()->ask("Review.html", [&](const std::optional<std::filesystem::path>&) {
      order += "answer";
      answered = true;
    });
    platform().mainLoop().post([&] { order += "reply "; });
  });
  EXPECT_TRUE(waitUntil([&] { return answered; }));
  EXPECT_EQ(order, "reply answer");
}

TEST(MacApplication, GivesEditingCommandsToWhoHasTheKeys) {
  EXPECT_EQ(commandOfKey("c"), "copy:");
  EXPECT_EQ(commandOfKey("a"), "selectAll:");
  EXPECT_EQ(commandOfKey("v"), "paste:");
  EXPECT_EQ(commandOfKey("x"), "cut:");
  EXPECT_EQ(commandOfKey("q"), "") << "it is ended from its own menu";
}

class Opened : public ApplicationDelegate {
 public:
  void applicationDidFinishLaunching() override {}
  void applicationWillTerminate() override {}
  void applicationShouldHandleReopen() override { ++count; }
  int count = 0;
};

TEST(MacApplication, TellsThatItIsOpenedAgain) {
  static Opened opened;
  platform().application().setDelegate(opened);
  userReopensApplication();
  EXPECT_EQ(opened.count, 1);
}

}  // namespace
}  // namespace quorin
