// The adapters of the desktop: what the user and other programs do reaches the receivers, and the
// adapters ask the system for what they should.
#include <fstream>
#include <thread>
#include <utility>

#import "app/macos/MacHotKeys.h"
#include "app/macos/MacLoginItem.h"
#include "app/macos/MacSelfTest.h"
#import "app/macos/MacStatusItem.h"
#include "app/macos/MacSystem.h"
#import "app/macos/MacUpdater.h"
#import "app/macos/MacWorkspace.h"
#include "kit/platform/Platform.h"
#include "tests/app/contract/ContractWorld.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/appkit/LoginItems.h"
#include "tests/macos/runtime/carbon/HotKeys.h"
#include "tests/macos/runtime/foundation/Bundle.h"
#include "tests/macos/runtime/foundation/Sparkle.h"

namespace quorin {
namespace {

using testing::ElementsAre;

constexpr const char* excel = "com.microsoft.Excel";

class Chooser : public StatusItemDelegate {
 public:
  void menuWillOpen() override { ++opened; }
  void menuItemChosen(std::size_t index) override { chosen.push_back(index); }
  int opened = 0;
  std::vector<std::size_t> chosen;
};

TEST(MacStatusItem, TellsWhichItemTheUserChose) {
  Chooser chooser;
  {
    MacStatusItem item("MenuBarIcon");
    item.setDelegate(&chooser);
    item.setMenu({{"One"}, {""}, {"Three"}, {"Four", false}});
    NSMenu* menu = menusInTheBar().back();
    EXPECT_TRUE(userChooses(menu, 2));
    EXPECT_FALSE(userChooses(menu, 1)) << "a separator";
    EXPECT_FALSE(userChooses(menu, 3)) << "disabled";
    item.setItem(3, {"Four", true, true, true});
    EXPECT_TRUE(userChooses(menu, 3));
    EXPECT_EQ([menu itemAtIndex:3].state, NSControlStateValueOn);
  }
  EXPECT_EQ(chooser.opened, 4);
  EXPECT_THAT(chooser.chosen, ElementsAre(2u, 3u));
  EXPECT_TRUE(menusInTheBar().empty()) << "the icon has gone with its owner";
}

TEST(MacStatusItem, TellsNobodyAfterItsEnd) {
  Chooser chooser;
  NSMenu* menu = nil;
  id receiver = nil;
  {
    MacStatusItem item("MenuBarIcon");
    item.setDelegate(&chooser);
    item.setMenu({{"One"}});
    menu = menusInTheBar().back();
    receiver = menu.delegate;
    EXPECT_TRUE([imagesInTheBar().back() isTemplate]) << "the system colours it";
  }
  ASSERT_NE(receiver, nil);
  userChooses(menu, 0);
  EXPECT_EQ(menu.delegate, nil);
  EXPECT_EQ(chooser.opened, 0);
  EXPECT_TRUE(chooser.chosen.empty());
}

TEST(MacHotKeys, LetAPressGoOnThatIsNotTheirs) {
  MacHotKeys other, service;
  int heard = 0;
  other.install([&](HotKeyID) {
    ++heard;
    return HotKeyService::noError;
  });
  HotKeyService::Status answer = HotKeyService::notHandled;
  service.install([&](HotKeyID) { return answer; });
  service.add({'QXtt', 7}, 0, 2048 + 512);
  EXPECT_TRUE(userPresses(0, 2048 + 512));
  EXPECT_EQ(heard, 1) << "who was there before is asked next";
  answer = HotKeyService::noError;
  EXPECT_TRUE(userPresses(0, 2048 + 512));
  EXPECT_EQ(heard, 1);
}

TEST(MacHotKeys, HaveNothingLeftWhenTheyGo) {
  const std::size_t handlers = installedHandlers(), keys = registeredHotKeys();
  std::vector<HotKeyID> pressed;
  {
    MacHotKeys service;
    EXPECT_EQ(service.install([&](HotKeyID id) {
      pressed.push_back(id);
      return HotKeyService::noError;
    }),
              HotKeyService::noError);
    EXPECT_EQ(service.add({'QXtt', 7}, 0, 2048 + 512), HotKeyService::noError);
    EXPECT_EQ(service.add({'QXtt', 8}, 1, 2048 + 512), HotKeyService::noError);
    EXPECT_TRUE(userPresses(0, 2048 + 512));
    service.remove({'QXtt', 8});
    EXPECT_FALSE(userPresses(1, 2048 + 512));
    EXPECT_EQ(registeredHotKeys(), keys + 1);
  }
  EXPECT_THAT(pressed, ElementsAre(HotKeyID{'QXtt', 7}));
  EXPECT_FALSE(userPresses(0, 2048 + 512));
  EXPECT_EQ(installedHandlers(), handlers);
  EXPECT_EQ(registeredHotKeys(), keys);
}

TEST(MacWorkspace, TellsWhichApplicationComesToTheFront) {
  const int process = startApplication(excel);
  std::vector<RunningApplication> told, toldLater;
  {
    MacWorkspace workspace;
    workspace.observeActivation([&](const RunningApplication& one) { told.push_back(one); });
    bringForward(process);
    workspace.observeActivation([&](const RunningApplication& one) { toldLater.push_back(one); });
    bringForward(process);
    EXPECT_EQ(workspace.frontmostApplication(), (RunningApplication{excel, process, false}));
    EXPECT_THAT(workspace.runningApplications(excel),
                ElementsAre(RunningApplication{excel, process, false}));
    workspace.activate({excel, process, false});
  }
  bringForward(process);
  EXPECT_THAT(told, ElementsAre(RunningApplication{excel, process, false}));
  EXPECT_EQ(toldLater.size(), 2u) << "the second handler alone, and none after its end";
  endApplication(process);
}

TEST(MacWorkspace, KnowsItsOwnProcess) {
  const auto own = MacWorkspace().runningApplications("com.quorin.contract");
  ASSERT_EQ(own.size(), 1u);
  EXPECT_TRUE(own[0].isSelf);
}

// Its other windows stay where the user has them.
TEST(MacWorkspace, BringsAnApplicationForwardWithNoOptions) {
  const int process = startApplication(excel);
  MacWorkspace().activate({excel, process, false});
  EXPECT_EQ(lastActivationOptions(), 0u);
  endApplication(process);
}

TEST(MacWorkspace, OpensFilesAndAddresses) {
  MacWorkspace workspace;
  EXPECT_TRUE(workspace.openURL("mailto:support@quorin.com"));
  EXPECT_TRUE(workspace.openFile("/tmp/a b.txt"));
  const std::vector<std::string> opened = openedURLs();
  ASSERT_GE(opened.size(), 2u);
  EXPECT_EQ(opened[opened.size() - 2], "mailto:support@quorin.com");
  EXPECT_EQ(opened.back(), "file:///tmp/a%20b.txt");
}

TEST(MacTargetApplication, KnowsWhetherExcelRuns) {
  MacTargetApplication target;
  EXPECT_FALSE(target.isRunning());
  const int process = startApplication(excel);
  EXPECT_TRUE(target.isRunning());
  endApplication(process);
  EXPECT_FALSE(target.isRunning());
}

TEST(MacFolders, AreTheUsers) {
  const std::filesystem::path home = ::getenv("HOME");
  EXPECT_EQ(MacFolders().applicationSupport(), home / "Library" / "Application Support");
  EXPECT_EQ(MacFolders().library(), home / "Library");
  EXPECT_EQ(MacFolders().desktop(), home / "Desktop");
}

class MacSelfTestReport : public testing::Test {
 protected:
  MacSelfTestReport() {
    ::setenv("HOME", folder.path().c_str(), 1);
    auto services = std::make_unique<Platform>();
    services->folders = std::make_unique<MacFolders>();
    services->target = std::make_unique<MacTargetApplication>();
    Platform::install(std::move(services));
  }
  ~MacSelfTestReport() override { ::setenv("HOME", home.c_str(), 1); }

  const std::string home = ::getenv("HOME");
  const TemporaryFolder folder;
};

TEST_F(MacSelfTestReport, LiesOnTheDesktopOrWhereItCan) {
  std::filesystem::path first, second;
  std::thread([&] { first = runSelfTest({}); }).join();
  EXPECT_EQ(first.parent_path(), std::filesystem::temp_directory_path());
  std::filesystem::create_directories(folder / "Desktop");
  std::thread([&] { second = runSelfTest({}); }).join();
  EXPECT_EQ(second.parent_path(), folder / "Desktop");
  std::ifstream in(second);
  const std::string text(std::istreambuf_iterator<char>(in), {});
  EXPECT_THAT(text, testing::HasSubstr("handler library: compiled\n  experiments: compiled"));
  std::filesystem::remove(first);
}

TEST(MacSelfTest, FindsEveryClassAndMessageThatTheAdaptersUse) {
  const SelfTest::PlatformFindings findings = checkFrameworks();
  EXPECT_GT(findings.checked, 180u);
  EXPECT_THAT(findings.missing, testing::IsEmpty()) << "what the fakes lack";
}

TEST(MacLoginItem, ComesGoesAndSaysWhyNot) {
  const LoginItems before = std::exchange(loginItems(), {});
  MacLoginItem item;
  EXPECT_EQ(item.status(), LoginItemStatus::notFound);
  EXPECT_EQ(item.registerItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::enabled);
  EXPECT_EQ(item.unregisterItem(), std::nullopt);
  EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
  loginItems().refusal = "denied by the user";
  EXPECT_EQ(item.registerItem(), "denied by the user");
  loginItems().refusesWithoutAWord = true;
  EXPECT_EQ(item.registerItem(), "unknown error");
  loginItems() = before;
}

TEST(MacLoginItem, TellsEachStatusOfTheSystems) {
  const LoginItems before = loginItems();
  const LoginItemStatus expected[] = {LoginItemStatus::notRegistered, LoginItemStatus::enabled,
                                      LoginItemStatus::requiresApproval, LoginItemStatus::notFound,
                                      LoginItemStatus::unknown};
  for (int status = 0; status < 5; ++status) {
    loginItems().status = status;
    EXPECT_EQ(MacLoginItem().status(), expected[status]) << status;
  }
  loginItems() = before;
}

TEST(MacLoginItem, IsInstalledInAFolderOfApplicationsAlone) {
  const auto folder = mainBundle().folder;
  EXPECT_FALSE(MacLoginItem().isInstalled());
  mainBundle().folder = "/Applications/Quorin.app";
  EXPECT_TRUE(MacLoginItem().isInstalled());
  mainBundle().folder = folder;
}

TEST(MacUpdater, SaysWhatIsMissing) {
  const auto info = mainBundle().info;
  EXPECT_EQ(MacUpdater().unavailable(), "no feed in this build");
  mainBundle().info["SUFeedURL"] = "https://example.org/appcast.xml";
  EXPECT_EQ(MacUpdater().unavailable(), "no feed in this build") << "nobody could trust it";
  mainBundle().info["SUPublicEDKey"] = "a key";
  EXPECT_EQ(MacUpdater().unavailable(), "the updater is missing");
  mainBundle().info = info;
}

TEST(MacUpdater, StartsOnceAndAsksWheneverItIsTold) {
  const MainBundle before = mainBundle();
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "Contents/Frameworks/Sparkle.framework");
  std::ofstream(folder / "Contents/Frameworks/Sparkle.framework/loads") << "yes";
  mainBundle().folder = folder.path();
  mainBundle().info["SUFeedURL"] = "https://example.org/appcast.xml";
  mainBundle().info["SUPublicEDKey"] = "a key";
  updates() = {};
  {
    MacUpdater updater;
    EXPECT_EQ(updater.unavailable(), std::nullopt);
    EXPECT_EQ(updater.unavailable(), std::nullopt);
    EXPECT_EQ(updates().asked, 0);
    updater.checkForUpdates();
    updater.checkForUpdates();
    EXPECT_EQ(updates().started, 1);
    EXPECT_EQ(updates().alive, 1) << "nobody else keeps it";
    EXPECT_EQ(updates().asked, 2);
  }
  EXPECT_EQ(updates().alive, 0);
  mainBundle() = before;
}

}  // namespace
}  // namespace quorin
