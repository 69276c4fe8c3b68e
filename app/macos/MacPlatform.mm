#import "app/macos/MacAlerts.h"
#import "app/macos/MacApplication.h"
#include "app/macos/MacArchiver.h"
#import "app/macos/MacBundle.h"
#import "app/macos/MacDefaults.h"
#import "app/macos/MacHotKeys.h"
#include "app/macos/MacLoginItem.h"
#import "app/macos/MacMainLoop.h"
#import "app/macos/MacPanelWindow.h"
#include "app/macos/MacSaveDialog.h"
#import "app/macos/MacStatusItem.h"
#include "app/macos/MacSystem.h"
#import "app/macos/MacUpdater.h"
#import "app/macos/MacWebView.h"
#import "app/macos/MacWorkspace.h"
#include "app/shell/ports/AppPlatform.h"
#include "kit/platform/Environment.h"

namespace quorin {
namespace {

class MacPlatform : public AppPlatform {
 public:
  Application& application() override { return application_; }
  MainLoop& mainLoop() override { return mainLoop_; }
  Workspace& workspace() override { return workspace_; }
  Alerts& alerts() override { return alerts_; }
  Defaults& defaults() override { return defaults_; }
  Bundle& bundle() override { return bundle_; }
  Clock& clock() override { return clock_; }
  HotKeyService* hotKeys() override { return &hotKeys_; }
  std::unique_ptr<StatusItem> makeStatusItem(const std::string& imageName) override {
    return std::make_unique<MacStatusItem>(imageName);
  }
  LoginItem* loginItem() override { return &loginItem_; }
  Updater* updater() override { return &updater_; }
  SaveDialog* saveDialog() override { return &saveDialog_; }
  Archiver* archiver() override { return &archiver_; }
  SystemVersions systemVersions() const override { return macVersions(); }

  std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options) override {
    return std::make_unique<MacPanelWindow>(options);
  }
  std::unique_ptr<WebView> makeWebView(const WebViewOptions& options) override {
    return std::make_unique<MacWebView>(options, processEnvironment().contains("QX_DEV_URL"));
  }
  std::string spreadsheetName() const override { return "Excel"; }

 private:
  MacApplication application_;  // first: AppKit needs its application before anything else
  MacMainLoop mainLoop_;
  MacWorkspace workspace_;
  MacAlerts alerts_;
  MacSaveDialog saveDialog_;
  MacDefaults defaults_;
  MacBundle bundle_;
  SystemClock clock_;
  MacHotKeys hotKeys_;
  MacArchiver archiver_;
  MacLoginItem loginItem_;
  MacUpdater updater_;
};

}  // namespace

std::unique_ptr<AppPlatform> makePlatform() {
  return std::make_unique<MacPlatform>();
}

}  // namespace quorin
