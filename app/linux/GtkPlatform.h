// GtkPlatform: the shell's platform on Linux: GTK 3 and WebKitGTK on X11.
#pragma once

#include <memory>

#include "app/linux/FileDefaults.h"
#include "app/linux/GLibMainLoop.h"
#include "app/linux/GtkAlerts.h"
#include "app/linux/GtkApplicationPort.h"
#include "app/linux/GtkUpdateProgress.h"
#include "app/linux/InstalledBundle.h"
#include "app/linux/WebKitView.h"
#include "app/linux/X11HotKeys.h"
#include "app/linux/X11Session.h"
#include "app/linux/X11UserInput.h"
#include "app/linux/X11Workspace.h"
#include "app/linux/XDGLoginItem.h"
#include "app/linux/ZipArchiver.h"
#include "app/linux/updates/FeedUpdater.h"
#include "app/linux/updates/SoupTransport.h"
#include "app/shell/ports/AppPlatform.h"
#include "kit/platform/Environment.h"
#include "kit/support/SerialQueue.h"

namespace quorin {

class GtkPlatform : public AppPlatform {
 public:
  // After GTK has been initialised on an X11 display.
  GtkPlatform();

  Application& application() override { return application_; }
  MainLoop& mainLoop() override { return loop_; }
  X11Workspace& workspace() override { return workspace_; }
  GtkAlerts& alerts() override { return alerts_; }
  Defaults& defaults() override { return defaults_; }
  Bundle& bundle() override { return bundle_; }
  Clock& clock() override { return clock_; }
  HotKeyService* hotKeys() override { return &hotKeys_; }
  UserInput* userInput() override { return &userInput_; }
  Updater* updater() override { return &updater_; }
  LoginItem* loginItem() override { return &loginItem_; }
  Archiver* archiver() override { return &archiver_; }
  SystemVersions systemVersions() const override;
  std::unique_ptr<StatusItem> makeStatusItem(const std::string& imageName) override;
  std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options) override;
  std::unique_ptr<WebView> makeWebView(const WebViewOptions& options) override;
  std::string spreadsheetName() const override { return "LibreOffice Calc"; }

  // The window and the view made last, which live as long as the application; for inspection.
  PanelWindow* panelWindow() const { return panelWindow_; }
  WebKitView* webView() const { return webView_; }
  const GtkUpdateProgress& updateProgress() const { return updateProgress_; }

 private:
  Environment environment_ = processEnvironment();
  SystemClock clock_;
  GLibMainLoop loop_;
  GtkApplicationPort application_;
  X11Session session_;
  X11Workspace workspace_{session_};
  X11HotKeys hotKeys_;
  X11UserInput userInput_;
  GtkAlerts alerts_{session_};
  FileDefaults defaults_;
  InstalledBundle bundle_;
  XDGLoginItem loginItem_;
  ZipArchiver archiver_;
  GtkUpdateProgress updateProgress_;
  SoupTransport updateTransport_{{bundle_.infoString("QXUpdateAuthorities")}};
  SerialQueue updateQueue_{"qx.updates"};
  FeedUpdater updater_;
  PanelWindow* panelWindow_ = nullptr;
  WebKitView* webView_ = nullptr;
};

}  // namespace quorin
