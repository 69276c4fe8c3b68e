#include "app/shell/AppDelegate.h"

#include <utility>

namespace quorin {

using BridgeShapes::CompanionAction;

AppDelegate::AppDelegate(Parts parts)
    : parts_(std::move(parts)), support_({parts_.platform, parts_.folders, parts_.log}) {}

void AppDelegate::applicationDidFinishLaunching() {
  if (const std::optional<std::string> error = parts_.compileError()) {
    tellCompileError(*error);
    return;
  }
  parts_.log.log("LAUNCH", parts_.platform.bundle().infoString("CFBundleShortVersionString"));
  scheduleAutoshow();
  const QXConfig config = loadConfiguration();
  promptIfCrashed(previousLaunch_, [this, config] {
    startFollowing(config);
    connectCallbacks();
    makeMenuBar();
    restoreStrandedMarks();
    registerHotKeys(config);
    watchActivation(config);
    makeSettings(config);
    if (raiseWanted_) raisePanel();
    if (wantedView_) surface(*wantedView_);
  });
}

void AppDelegate::applicationShouldTerminate(GoOn goOn) {
  if (!panel_ || !panel_->isVisible()) return goOn();
  const PanelBridge::Recorded left = parts_.bridge.leftToTakeBack();
  if (left.isEmpty()) return goOn();
  goOn_ = std::move(goOn);
  const auto number = [](std::int64_t count) { return static_cast<double>(count); };
  panel_->sendEvent("quitting", JSONValue::Object{{"cells", number(left.cells)},
                                                  {"names", number(left.names)},
                                                  {"rows", number(left.rows)},
                                                  {"columns", number(left.columns)}});
}

void AppDelegate::applicationWillTerminate() {
  parts_.bridge.clearMarksForTerminate();
  parts_.fileQueue.sync([] {});  // what the user said is on the disk
  parts_.log.log("TERMINATE", "quit");
  parts_.log.flush();
}

Panel& AppDelegate::panel() {
  if (!panel_) {
    panel_ = std::make_unique<Panel>(Panel::Parts{parts_.platform, parts_.bridge,
                                                  parts_.bridgeQueue, parts_.fileQueue, parts_.log,
                                                  parts_.config, parts_.environment});
  }
  return *panel_;
}

void AppDelegate::tellCompileError(const std::string& error) {
  const Alert alert{"Quorin could not compile its Excel script: " + error, "", {}};
  parts_.platform.application().activate();
  parts_.platform.alerts().show(alert, [&application = parts_.platform.application()](std::size_t) {
    application.terminate();
  });
}

// A development aid: the panel at every launch, without a hot key.
void AppDelegate::scheduleAutoshow() {
  const auto autoshow = parts_.environment.find("QX_DEV_AUTOSHOW");
  if (autoshow == parts_.environment.end() || autoshow->second != "1") return;
  parts_.platform.mainLoop().post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) panel().summon();
  });
}

QXConfig AppDelegate::loadConfiguration() {
  QXConfig config = QXConfig::load(parts_.config, FileSystem::real(), parts_.log);
  previousLaunch_ = ISO::date(config.lastLaunchedAt);
  try {
    const ISO::Date launch = support_.launchDate(ISO::fromClock(parts_.platform.clock().now()));
    QXConfig::merge({{"lastLaunchedAt", JSONValue(ISO::string(launch))}}, parts_.config);
  } catch (const std::exception& error) {
    parts_.log.log("ERROR", std::string("lastLaunchedAt not saved: ") + error.what());
  }
  return config;
}

// The rest of start-up comes after the answer.
void AppDelegate::promptIfCrashed(const std::optional<ISO::Date>& since, const Next& next) {
  support_.promptIfCrashed(since, [alive = std::weak_ptr(alive_), next] {
    if (!alive.expired()) next();
  });
}

void AppDelegate::startFollowing(const QXConfig& config) {
  poller_ = std::make_unique<Poller>(parts_.platform, parts_.bridge, panel(), config.pollMs);
  poller_->start();
  placer_ = std::make_unique<PanelPlacer>(parts_.platform, parts_.bridge, panel());
}

void AppDelegate::connectCallbacks() {
  parts_.bridge.setOnActivatedCell(
      [this, alive = std::weak_ptr(alive_),
       &loop = parts_.platform.mainLoop()](const BridgeShapes::CellPlace& cell) {
        loop.post([this, alive, cell] {
          if (!alive.expired()) poller_->setBaseline(cell);
        });
      });
  panel().setOnSummon([this] {
    if (excelIsFrontmost(parts_.platform.workspace())) poller_->seedBaseline();
    if (settings_) settings_->reread();
  });
}

void AppDelegate::makeMenuBar() {
  menuBar_ = std::make_unique<MenuBar>(
      MenuBar::Parts{parts_.platform, parts_.bridge, panel(), *poller_, support_, parts_.log});
}

void AppDelegate::restoreStrandedMarks() {
  parts_.bridgeQueue.post([&bridge = parts_.bridge] { bridge.restoreStranded(); });
}

void AppDelegate::registerHotKeys(const QXConfig& config) {
  hotKey_ = std::make_unique<HotKey>(HotKey::Parts{parts_.platform, panel(), *placer_, parts_.log});
  if (HotKeyService* service = parts_.platform.hotKeys()) hotKey_->registerAll(*service, config);
}

void AppDelegate::watchActivation(const QXConfig& config) {
  parts_.platform.workspace().observeActivation(
      [this, alive = std::weak_ptr(alive_)](const RunningApplication& application) {
        if (!alive.expired()) applicationActivated(application);
      });
  if (parts_.platform.workspace().alwaysTellsWhoIsInFront()) return;
  sign_ = std::make_unique<SelectionSign>(parts_.platform, parts_.bridge, panel(), *poller_);
  sign_->start(config.pollMs,
               [this](const RunningApplication& excel) { applicationActivated(excel); });
}

void AppDelegate::makeSettings(const QXConfig& config) {
  const auto setInterval = [this](std::int64_t pollMs) {
    poller_->setInterval(pollMs);
    if (sign_) sign_->setInterval(pollMs);
  };
  settings_ =
      std::make_unique<Settings>(Settings::Parts{parts_.platform, panel(), *poller_, *hotKey_,
                                                 *menuBar_, parts_.log, parts_.config, setInterval},
                                 config);
  panel().setOnApplicationVerb(
      [this, alive = std::weak_ptr(alive_)](const std::string& verb, const JSONValue::Array& args) {
        return alive.expired() ? std::nullopt : answer(verb, args);
      });
}

std::optional<PanelBridge::Reply> AppDelegate::answer(const std::string& verb,
                                                      const JSONValue::Array& args) {
  if (verb != "quittingDrawn") return settings_->answer(verb, args);
  if (const GoOn goOn = std::exchange(goOn_, nullptr)) goOn();
  return PanelBridge::Reply{true, nullptr};
}

void AppDelegate::applicationActivated(const RunningApplication& application) {
  const auto text = [](bool value) { return value ? "true" : "false"; };
  const bool enabled = panel().enabled();
  const bool visible = panel().isVisible();
  const CompanionAction action = BridgeShapes::companionAction(
      application.identifier == excelIdentifier, application.isSelf, enabled, visible);
  parts_.log.log("COMPANION", "activated=" + application.identifier +
                                  " action=" + std::string(BridgeShapes::name(action)) +
                                  " enabled=" + text(enabled) + " visible=" + text(visible) +
                                  " key=" + text(panel().isKey()));
  switch (action) {
    case CompanionAction::show:
      panel().showCompanion();
      placer_->place();
      break;
    case CompanionAction::hide:
      panel().hideCompanion();
      break;
    case CompanionAction::ignore:
      break;
  }
}

void AppDelegate::surface(const std::string& view) {
  if (!hotKey_) {
    wantedView_ = view;
    return;
  }
  hotKey_->surface(view);
}

void AppDelegate::step(int direction) {
  if (hotKey_) hotKey_->step(direction);
}

void AppDelegate::applicationShouldHandleReopen() {
  raisePanel();
}

void AppDelegate::raisePanel() {
  raiseWanted_ = !placer_;
  if (raiseWanted_) return;
  if (panel().isVisible()) {
    panel().summon();
  } else {
    placer_->showBesideExcel({"summon", JSONValue::Object{}});
  }
}

}  // namespace quorin
