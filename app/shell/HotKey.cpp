#include "app/shell/HotKey.h"

#include <utility>

#include "app/shell/Poller.h"

namespace quorin {

namespace {

std::string text(bool value) {
  return value ? "true" : "false";
}

}  // namespace

HotKey::HotKey(Parts parts) : parts_(parts) {}

void HotKey::registerAll(HotKeyService& service, const QXConfig& config) {
  const HotKeyService::Status installed =
      service.install([this, alive = std::weak_ptr(alive_)](HotKeyID id) {
        return alive.expired() ? HotKeyService::notHandled : pressed(id);
      });
  if (installed != HotKeyService::noError) {
    parts_.log.log("ERROR", "hotkey handler failed: " + std::to_string(installed));
  }
  const auto add = [&](std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers,
                       Action action) {
    handlers_[id] = std::move(action);
    const HotKeyService::Status status = service.add({signature, id}, keyCode, modifiers);
    if (status == HotKeyService::noError) return;
    parts_.log.log("ERROR", "hotkey " + std::to_string(keyCode) +
                                " register failed: " + std::to_string(status));
  };
  add(1, config.summonKeyCode, config.summonModifiers, [this] { surface("tree"); });
  add(2, leftArrow, controlOption, [this] { step(-1); });
  add(3, rightArrow, controlOption, [this] { step(1); });
  add(4, config.mapKeyCode, config.mapModifiers, [this] { surface("map"); });
  add(5, config.depsKeyCode, config.depsModifiers, [this] { surface("deps"); });
}

HotKeyService::Status HotKey::pressed(HotKeyID id) {
  const auto found = handlers_.find(id.id);
  if (id.signature != signature || found == handlers_.end()) return HotKeyService::notHandled;
  found->second();
  return HotKeyService::noError;
}

void HotKey::step(int direction) {
  if (!parts_.panel.isVisible()) return;
  parts_.panel.sendEvent("step", JSONValue::Object{{"dir", direction}});
}

void HotKey::surface(const std::string& view) {
  Panel& panel = parts_.panel;
  const bool visible = panel.isVisible();
  const bool key = panel.isKey();
  parts_.log.log("HOTKEY",
                 view + " key=" + text(key) + " visible=" + text(visible) +
                     " excelFrontmost=" + text(excelIsFrontmost(parts_.platform.workspace())));
  const JSONValue payload =
      JSONValue::Object{{"name", view}, {"wasVisible", visible}, {"wasKey", key}};
  if (visible) {
    if (!key) panel.makeKey();
    panel.sendEvent("surface", payload);
  } else {
    parts_.placer.showBesideExcel({"surface", payload});
  }
}

}  // namespace quorin
