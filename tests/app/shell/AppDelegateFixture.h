// The application's delegate over fakes, beside an Excel that runs and tells where its window is.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/shell/AppDelegate.h"
#include "tests/app/shell/ShellFixture.h"

namespace quorin {

class AppDelegateFixture : public ShellFixture {
 protected:
  AppDelegateFixture() {
    bridge.probed = JSONValue::Object{
        {"state", "ok"},
        {"excelWindow", JSONValue::Object{{"x1", 40}, {"y1", 60}, {"x2", 900}, {"y2", 800}}}};
    platform.bundle().resources = folder;
    writeFile(folder / "web/index.html", "");
    platform.workspace().running = {excel()};
  }

  void makeDelegate() {
    delegate = std::make_unique<AppDelegate>(
        AppDelegate::Parts{platform, bridge, queue, files, *log, config, environment,
                           [this] { return compileError; }, folders});
  }

  AppDelegate& launch() {
    makeDelegate();
    delegate->applicationDidFinishLaunching();
    return *delegate;
  }

  // Launched, the page loaded, start-up's own work done.
  AppDelegate& launched() {
    AppDelegate& app = launch();
    platform.webView().finishLoading();
    settle();
    takeJournal();
    platform.webView().takeScripts();
    return app;
  }

  std::filesystem::path config = folder / "config.json";
  FakeFolders folders{folder};
  std::optional<std::string> compileError;
  std::unique_ptr<AppDelegate> delegate;
};

}  // namespace quorin
