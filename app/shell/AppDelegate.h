// AppDelegate: what happens at the two ends of a run, and when other applications come forward.
// It owns the panel and the poller and wires them to the bridge. Main thread only; owned by `main`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/shell/HotKey.h"
#include "app/shell/MenuBar.h"
#include "app/shell/Panel.h"
#include "app/shell/PanelPlacer.h"
#include "app/shell/Poller.h"
#include "app/shell/SelectionSign.h"
#include "app/shell/Settings.h"
#include "app/shell/Support.h"
#include "kit/support/ISO.h"
#include "kit/support/QXConfig.h"

namespace quorin {

class AppDelegate : public ApplicationDelegate {
 public:
  // Everything here must outlive the delegate.
  struct Parts {
    AppPlatform& platform;
    PanelBridge& bridge;
    Queue& bridgeQueue;  // "qx.bridge"
    Queue& fileQueue;    // "qx.files"
    DiagLog& log;
    std::filesystem::path config;
    Environment environment;
    // Why the handler library did not compile; none when it did.
    std::function<std::optional<std::string>()> compileError;
    Folders& folders;
  };

  explicit AppDelegate(Parts parts);

  void applicationDidFinishLaunching() override;
  // Has the visible panel say what is going to be taken back, and waits until it is drawn.
  void applicationShouldTerminate(GoOn goOn) override;
  void applicationWillTerminate() override;
  void applicationShouldHandleReopen() override;

  // The one panel; made when it is first asked for.
  Panel& panel();

  // Brings the panel up on the user's demand, with the keyboard: where it is, where the user put
  // it, or else beside Excel's window. Before start-up is complete, at its end.
  void raisePanel();

  // What the global hot keys do, for desktops that keep those to themselves. Before start-up is
  // complete the view is brought up at its end, and a step is none.
  void surface(const std::string& view);
  void step(int direction);

 private:
  using Next = std::function<void()>;

  void tellCompileError(const std::string& error);
  void scheduleAutoshow();
  QXConfig loadConfiguration();
  void promptIfCrashed(const std::optional<ISO::Date>& since, const Next& next);
  void startFollowing(const QXConfig& config);
  void connectCallbacks();
  void makeMenuBar();
  void restoreStrandedMarks();
  void registerHotKeys(const QXConfig& config);
  void watchActivation(const QXConfig& config);
  void makeSettings(const QXConfig& config);

  void applicationActivated(const RunningApplication& application);

  // The page's verbs that concern the whole application; none for any other.
  std::optional<PanelBridge::Reply> answer(const std::string& verb, const JSONValue::Array& args);

  Parts parts_;
  std::optional<ISO::Date> previousLaunch_;
  std::unique_ptr<Panel> panel_;
  std::unique_ptr<Poller> poller_;
  std::unique_ptr<SelectionSign> sign_;  // where the desktop does not always tell who is in front
  std::unique_ptr<PanelPlacer> placer_;
  std::unique_ptr<HotKey> hotKey_;
  Support support_;
  std::unique_ptr<MenuBar> menuBar_;
  std::unique_ptr<Settings> settings_;
  bool raiseWanted_ = false;
  std::optional<std::string> wantedView_;
  GoOn goOn_;  // while the page draws what it says of the end
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
