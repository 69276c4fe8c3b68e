// The macOS program: puts the parts together and runs the application.
#import <AppKit/AppKit.h>
#include <cstdio>

#import "app/macos/AppleScriptRunner.h"
#include "app/macos/MacSystem.h"
#include "app/shell/AppDelegate.h"
#include "app/shell/BridgeLink.h"
#include "app/shell/ports/AppPlatform.h"
#include "kit/bridge/Bridge.h"
#include "kit/platform/Platform.h"
#include "kit/platform/Thread.h"
#include "kit/support/FolderLock.h"

namespace quorin {
namespace {

std::unique_ptr<Platform> systemServices() {
  auto services = std::make_unique<Platform>();
  services->folders = std::make_unique<MacFolders>();
  services->target = std::make_unique<MacTargetApplication>();
  return services;
}

int run() {
  MainThread::record();
  Platform::install(systemServices());
  const std::filesystem::path config = QXConfig::defaultURL();
  const std::optional<FolderLock> lock = FolderLock::acquire(config.parent_path());
  if (!lock) {
    // Opening the application again tells the one that runs.
    [NSWorkspace.sharedWorkspace openURL:NSBundle.mainBundle.bundleURL];
    return 0;
  }

  DiagLog& log = DiagLog::shared();
  const std::unique_ptr<AppPlatform> platform = makePlatform();
  Application& application = platform->application();
  application.setAccessory();

  ExcelThread excel([](CallThreadPost) { return std::make_unique<AppleScriptRunner>(); }, log);
  ExcelThread::setShared(&excel);
  HighlightStore highlights(HighlightStore::defaultURL());
  UnhideStore unhidden(UnhideStore::defaultURL());
  Bridge bridge(excel, log, highlights, unhidden, targetApplication());
  BridgeLink link(bridge);
  SerialQueue bridgeQueue("qx.bridge");
  AppDelegate delegate({*platform, link, bridgeQueue, log, config, processEnvironment(),
                        [&excel] { return excel.compileError(); }, platformFolders()});
  application.setDelegate(delegate);
  application.run();
  return 0;
}

}  // namespace
}  // namespace quorin

int main() {
  @autoreleasepool {
    try {
      return quorin::run();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "quorin: %s\n", error.what());
      return 1;
    }
  }
}
