// The macOS program: puts the parts together and runs the application.
#import <AppKit/AppKit.h>
#include <cstdio>
#include <cstring>

#import "app/macos/AppleScriptRunner.h"
#import "app/macos/MacSelfTest.h"
#include "app/macos/MacSystem.h"
#include "app/shell/AppDelegate.h"
#include "app/shell/ports/AppPlatform.h"
#include "kit/bridge/Bridge.h"
#include "kit/platform/Platform.h"
#include "kit/platform/Thread.h"
#include "kit/support/FileSystem.h"
#include "kit/support/FolderLock.h"

namespace quorin {
namespace {

std::unique_ptr<Platform> systemServices() {
  auto services = std::make_unique<Platform>();
  services->folders = std::make_unique<MacFolders>();
  services->target = std::make_unique<MacTargetApplication>();
  return services;
}

// The report opens when it is written; the application stays in the background until then.
class SelfTestDelegate : public ApplicationDelegate {
 public:
  explicit SelfTestDelegate(AppPlatform& platform) : platform_(platform) {}

  void applicationDidFinishLaunching() override {
    queue_.post([this, findings = checkFrameworks()] {
      const std::filesystem::path report = runSelfTest(findings);
      platform_.mainLoop().post([this, report] {
        openReport(report);
        platform_.application().terminate();
      });
    });
  }
  void applicationWillTerminate() override {}

 private:
  AppPlatform& platform_;
  SerialQueue queue_{"qx.selftest"};
};

int selfTest() {
  const std::unique_ptr<AppPlatform> platform = makePlatform();
  SelfTestDelegate delegate(*platform);
  platform->application().setAccessory();
  platform->application().setDelegate(delegate);
  platform->application().run();
  return 0;
}

int run(bool selfTestWanted) {
  MainThread::record();
  Platform::install(systemServices());
  if (selfTestWanted) return selfTest();
  const std::filesystem::path config = QXConfig::defaultURL();
  const std::optional<FolderLock> lock = FolderLock::acquire(config.parent_path());
  if (!lock) {
    // Opening the application again tells the one that runs.
    [NSWorkspace.sharedWorkspace openURL:NSBundle.mainBundle.bundleURL];
    return 0;
  }

  DiagLog& log = DiagLog::shared();
  closeToOthers(log.url().parent_path());
  const std::unique_ptr<AppPlatform> platform = makePlatform();
  Application& application = platform->application();
  application.setAccessory();

  ExcelThread excel([](CallThreadPost) { return std::make_unique<AppleScriptRunner>(); }, log);
  ExcelThread::setShared(&excel);
  HighlightStore highlights(HighlightStore::defaultURL());
  UnhideStore unhidden(UnhideStore::defaultURL());
  Bridge bridge(excel, log, highlights, unhidden, targetApplication());
  SerialQueue bridgeQueue("qx.bridge");
  SerialQueue fileQueue("qx.files");
  AppDelegate delegate({*platform, bridge, bridgeQueue, fileQueue, log, config,
                        processEnvironment(), [&excel] { return excel.compileError(); },
                        platformFolders()});
  application.setDelegate(delegate);
  application.run();
  return 0;
}

}  // namespace
}  // namespace quorin

int main(int argc, char** argv) {
  @autoreleasepool {
    try {
      return quorin::run(argc > 1 && std::strcmp(argv[1], "--self-test") == 0);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "quorin: %s\n", error.what());
      return 1;
    }
  }
}
