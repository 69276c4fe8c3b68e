// AppPlatform: one of each port of the shell, made once by `main` on the main thread and alive
// until the process ends. Windows and views are made from it and must go before it.
#pragma once

#include <memory>

#include "app/shell/ports/Alerts.h"
#include "app/shell/ports/Application.h"
#include "app/shell/ports/Bundle.h"
#include "app/shell/ports/Clock.h"
#include "app/shell/ports/Defaults.h"
#include "app/shell/ports/HotKeyService.h"
#include "app/shell/ports/LoginItem.h"
#include "app/shell/ports/MainLoop.h"
#include "app/shell/ports/PanelWindow.h"
#include "app/shell/ports/SaveDialog.h"
#include "app/shell/ports/StatusItem.h"
#include "app/shell/ports/Updater.h"
#include "app/shell/ports/UserInput.h"
#include "app/shell/ports/WebView.h"
#include "app/shell/ports/Workspace.h"
#include "kit/platform/Archiver.h"
#include "kit/support/ProblemReport.h"

namespace quorin {

class AppPlatform {
 public:
  virtual ~AppPlatform() = default;

  virtual Application& application() = 0;
  virtual MainLoop& mainLoop() = 0;
  virtual Workspace& workspace() = 0;
  virtual Alerts& alerts() = 0;
  virtual Defaults& defaults() = 0;
  virtual Bundle& bundle() = 0;
  virtual Clock& clock() = 0;

  // None where the desktop has no such service.
  virtual HotKeyService* hotKeys() { return nullptr; }

  // None where the desktop does not tell of it.
  virtual UserInput* userInput() { return nullptr; }

  // The icon named so among the resources; none where the desktop has no place for it.
  virtual std::unique_ptr<StatusItem> makeStatusItem(const std::string& imageName) {
    static_cast<void>(imageName);
    return nullptr;
  }

  // None where the platform has no such thing.
  virtual LoginItem* loginItem() { return nullptr; }
  virtual Updater* updater() { return nullptr; }
  virtual SaveDialog* saveDialog() { return nullptr; }

  // None where nothing can pack files.
  virtual Archiver* archiver() { return nullptr; }

  // What a problem report tells of the machine. Reads it anew.
  virtual SystemVersions systemVersions() const { return {}; }

  virtual std::unique_ptr<PanelWindow> makePanelWindow(const PanelWindowOptions& options) = 0;
  virtual std::unique_ptr<WebView> makeWebView(const WebViewOptions& options) = 0;

  // The name of the spreadsheet program, as the page's sentences say it.
  virtual std::string spreadsheetName() const = 0;
};

// Defined by exactly one library of a program: app/macos, app/linux, or the tests' fakes.
std::unique_ptr<AppPlatform> makePlatform();

}  // namespace quorin
