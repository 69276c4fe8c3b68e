// GtkPlatform: the shell's platform on Linux: GTK 3 and WebKitGTK, on X11 or Wayland.
#pragma once

#include <memory>

#include "app/linux/Desktop.h"
#include "app/linux/FileDefaults.h"
#include "app/linux/GLibMainLoop.h"
#include "app/linux/GtkAlerts.h"
#include "app/linux/GtkApplicationPort.h"
#include "app/linux/GtkSaveDialog.h"
#include "app/linux/GtkUpdateProgress.h"
#include "app/linux/InstalledBundle.h"
#include "app/linux/WebKitView.h"
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
  // After GTK has been initialised.
  explicit GtkPlatform(std::unique_ptr<Desktop> desktop);

  Application& application() override { return application_; }
  MainLoop& mainLoop() override { return loop_; }
  Workspace& workspace() override { return desktop_->workspace(); }
  GtkAlerts& alerts() override { return alerts_; }
  Defaults& defaults() override { return defaults_; }
  Bundle& bundle() override { return bundle_; }
  Clock& clock() override { return clock_; }
  HotKeyService* hotKeys() override { return desktop_->hotKeys(); }
  UserInput* userInput() override { return desktop_->userInput(); }
  Updater* updater() override { return &updater_; }
  GtkSaveDialog* saveDialog() override { return &saveDialog_; }
  LoginItem* loginItem() override { return &loginItem_; }
  Archiver* archiver() override { return &archiver_; }
  SystemVersions systemVersions() const override;
  std::unique_ptr<StatusItem> makeStatusItem(const std::string& imageName) override;
  std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options) override;
  std::unique_ptr<WebView> makeWebView(const WebViewOptions& options) override;
  std::string spreadsheetName() const override { return "LibreOffice Calc"; }

  // What the user should know of how far the session lets the panel go; empty: nothing.
  std::string sessionNote() const { return desktop_->note(); }

  // The window and the view made last, which live as long as the application; for inspection.
  PanelWindow* panelWindow() const { return panelWindow_; }
  WebKitView* webView() const { return webView_; }
  const GtkUpdateProgress& updateProgress() const { return updateProgress_; }

 private:
  Environment environment_ = processEnvironment();
  SystemClock clock_;
  GLibMainLoop loop_;
  GtkApplicationPort application_;
  const std::unique_ptr<Desktop> desktop_;
  GtkAlerts alerts_{desktop_->x11()};
  GtkSaveDialog saveDialog_{desktop_->x11()};
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
