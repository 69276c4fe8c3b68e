#include "app/shell/MenuBar.h"

#include <utility>

namespace quorin {

namespace {

constexpr const char* pauseTitle = "Pause Follow";
constexpr const char* resumeTitle = "Resume Follow";
constexpr const char* updateTitle = "Check for Updates…";
constexpr const char* loginTitle = "Start at Login";
constexpr const char* notInstalledTitle = "Start at Login (installed app only)";

// A member of the payload, or null.
JSONValue member(const JSONValue& payload, const std::string& key) {
  const JSONValue::Object* const object = payload.object();
  if (!object) return {};
  const auto found = object->find(key);
  return found == object->end() ? JSONValue() : found->second;
}

}  // namespace

std::string_view name(LoginItemStatus status) {
  switch (status) {
    case LoginItemStatus::notRegistered:
      return "notRegistered";
    case LoginItemStatus::enabled:
      return "enabled";
    case LoginItemStatus::requiresApproval:
      return "requiresApproval";
    case LoginItemStatus::notFound:
      return "notFound";
    case LoginItemStatus::unknown:
      break;
  }
  return "unknown";
}

MenuBar::MenuBar(Parts parts)
    : parts_(parts),
      entries_(makeEntries()),
      statusItem_(parts_.platform.makeStatusItem(imageName)) {
  if (statusItem_) {
    std::vector<MenuItem> items;
    for (const Entry& entry : entries_) items.push_back(entry.item);
    statusItem_->setMenu(items);
    statusItem_->setDelegate(this);
  }
  refreshUpdateItem();
  refreshLoginItem();
}

MenuBar::~MenuBar() {
  if (statusItem_) statusItem_->setDelegate(nullptr);
}

std::vector<MenuBar::Entry> MenuBar::makeEntries() {
  return {
      {{"Open Auditor"}, [this] { parts_.panel.summon(); }},
      {{pauseTitle}, [this] { toggleFollow(); }, Changing::follow},
      {{"Clear Stuck Highlights"}, [this] { clearStuck(); }},
      {{"Open Diagnostic Log"}, [this] { openLog(); }},
      {{"Report a Problem…"}, [this] { parts_.support.report(); }},
      {{updateTitle}, [this] { checkForUpdates(); }, Changing::updates},
      {{loginTitle, true, false, true}, [this] { toggleLogin(); }, Changing::login},
      {{"Settings…"}, [this] { openSettings(); }},
      {{""}, [] {}},
      {{"Quit Quorin"}, [this] { parts_.platform.application().terminate(); }},
  };
}

void MenuBar::menuWillOpen() {
  refreshLoginItem();
}

void MenuBar::menuItemChosen(std::size_t index) {
  if (index < entries_.size() && entries_[index].item.enabled) entries_[index].action();
}

void MenuBar::change(Changing name, const MenuItem& item) {
  for (std::size_t index = 0; index < entries_.size(); ++index) {
    if (entries_[index].name != name) continue;
    entries_[index].item = item;
    if (statusItem_) statusItem_->setItem(index, item);
  }
}

void MenuBar::toggleFollow() {
  setFollowing(parts_.poller.paused());
}

void MenuBar::setFollowing(bool following) {
  const bool paused = !following;
  if (paused == parts_.poller.paused()) return;
  parts_.poller.setPaused(paused);
  change(Changing::follow, {paused ? resumeTitle : pauseTitle});
  parts_.panel.sendEvent("followState", JSONValue::Object{{"paused", paused}});
}

void MenuBar::openSettings() {
  parts_.panel.summon();
  parts_.panel.sendEvent("showSettings", JSONValue::Object{});
}

void MenuBar::clearStuck() {
  parts_.panel.bridgeQueue().post([this, &bridge = parts_.bridge,
                                   &loop = parts_.platform.mainLoop(),
                                   alive = std::weak_ptr(alive_)] {
    loop.post([this, alive, reply = bridge.dispatch("clearMarks", {})] {
      if (!alive.expired()) tellCleared(reply);
    });
  });
}

void MenuBar::tellCleared(const PanelBridge::Reply& reply) {
  if (!reply.ok) {
    const JSONValue message = member(reply.payload, "message");
    tell({"Could not clear highlights", message.string() ? *message.string() : "", {}});
    return;
  }
  const JSONValue removed = member(reply.payload, "removed");
  const long long count = removed.number() ? static_cast<long long>(*removed.number()) : 0;
  tell({"Removed " + std::to_string(count) + " highlights", "", {}});
}

// An application without a window of its own in front shows its alerts behind all others.
void MenuBar::tell(const Alert& alert) {
  parts_.platform.application().activate();
  parts_.platform.alerts().show(alert, [](std::size_t) {});
}

void MenuBar::openLog() {
  parts_.log.flush();
  if (!parts_.platform.workspace().openFile(parts_.log.url())) {
    parts_.log.log("ERROR", "no program opens " + parts_.log.url().string());
  }
}

void MenuBar::checkForUpdates() {
  Updater* const updater = parts_.platform.updater();
  if (updater && !updater->unavailable()) updater->checkForUpdates();
}

void MenuBar::refreshUpdateItem() {
  Updater* const updater = parts_.platform.updater();
  const std::optional<std::string> reason =
      updater ? updater->unavailable() : std::optional<std::string>("not in this build");
  if (!reason) return;
  change(Changing::updates, {std::string(updateTitle) + " (" + *reason + ")", false});
}

void MenuBar::toggleLogin() {
  LoginItem* const login = parts_.platform.loginItem();
  if (!login) return;
  const std::optional<std::string> error = setLogin(login->status() != LoginItemStatus::enabled);
  if (error) tell({"Could not change the login item", *error, {}});
}

std::optional<std::string> MenuBar::setLogin(bool starts) {
  LoginItem* const login = parts_.platform.loginItem();
  if (!login) return "there is no such thing here";
  const std::optional<std::string> error = starts ? login->registerItem() : login->unregisterItem();
  if (error) {
    parts_.log.log("ERROR", "login: " + *error);
  } else {
    parts_.log.log("LOGIN",
                   (starts ? "register " : "unregister ") + std::string(name(login->status())));
  }
  refreshLoginItem();
  return error;
}

void MenuBar::refreshLoginItem() {
  LoginItem* const login = parts_.platform.loginItem();
  if (!login || !login->isInstalled()) {
    change(Changing::login, {notInstalledTitle, false, false, true});
    return;
  }
  change(Changing::login, {loginTitle, true, login->status() == LoginItemStatus::enabled, true});
}

}  // namespace quorin
