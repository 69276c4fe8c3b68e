#include "app/shell/HotKey.h"

#include <chrono>
#include <utility>

#include "app/shell/Poller.h"
#include "app/shell/Views.h"

namespace quorin {

namespace {

constexpr std::chrono::seconds longestPause{20};

std::string text(bool value) {
  return value ? "true" : "false";
}

std::map<std::uint32_t, KeyCombination> combinationsOf(const QXConfig& config) {
  return {{views::tree.hotKey, config.summonKey()},
          {HotKey::backID, {HotKey::leftArrow, HotKey::controlOption}},
          {HotKey::onID, {HotKey::rightArrow, HotKey::controlOption}},
          {views::map.hotKey, config.mapKey()},
          {views::dependents.hotKey, config.depsKey()}};
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
  service_ = &service;
  entries_[backID].action = [this] { step(-1); };
  entries_[onID].action = [this] { step(1); };
  for (const SummonedView& view : views::all) {
    entries_[view.hotKey].action = [this, name = std::string(view.name)] { surface(name); };
  }
  for (const auto& [id, combination] : combinationsOf(config)) addOrLog(id, combination);
}

// All that go are gone before the first comes: two may have changed places.
void HotKey::apply(const QXConfig& config) {
  if (!service_) return;
  setPaused(false);
  std::map<std::uint32_t, KeyCombination> changed = combinationsOf(config);
  std::erase_if(changed, [this](const auto& one) {
    return entries_.at(one.first).combination == one.second;
  });
  for (const auto& [id, combination] : changed) remove(id);
  for (const auto& [id, combination] : changed) addOrLog(id, combination);
}

HotKeyService::Status HotKey::change(std::uint32_t id, const KeyCombination& combination) {
  if (!service_) return HotKeyService::noError;
  setPaused(false);
  const KeyCombination before = entries_.at(id).combination;
  remove(id);
  const HotKeyService::Status status = add(id, combination);
  if (status != HotKeyService::noError) add(id, before);
  return status;
}

HotKeyService::Status HotKey::status(std::uint32_t id) const {
  const auto found = entries_.find(id);
  return found == entries_.end() ? HotKeyService::noError : found->second.status;
}

std::optional<std::uint32_t> HotKey::idOf(const KeyCombination& combination) const {
  for (const auto& [id, entry] : entries_) {
    if (!combination.isNone() && entry.combination == combination) return id;
  }
  return std::nullopt;
}

void HotKey::setPaused(bool paused) {
  if (!service_ || paused == (pause_ != nullptr)) return;
  if (!paused) {
    pause_.reset();
    for (const auto& [id, entry] : entries_) add(id, entry.combination);
    return;
  }
  for (const auto& [id, entry] : entries_) remove(id);
  pause_ = parts_.platform.mainLoop().startTimer(longestPause, TimerKind::once,
                                                 [this] { setPaused(false); });
}

HotKeyService::Status HotKey::add(std::uint32_t id, const KeyCombination& combination) {
  Entry& entry = entries_.at(id);
  entry.combination = combination;
  entry.status = combination.isNone()
                     ? HotKeyService::noError
                     : service_->add({signature, id}, combination.keyCode, combination.modifiers);
  return entry.status;
}

void HotKey::remove(std::uint32_t id) {
  if (!entries_.at(id).combination.isNone()) service_->remove({signature, id});
}

void HotKey::addOrLog(std::uint32_t id, const KeyCombination& combination) {
  const HotKeyService::Status status = add(id, combination);
  if (status == HotKeyService::noError) return;
  parts_.log.log("ERROR", "hotkey " + std::to_string(combination.keyCode) +
                              " register failed: " + std::to_string(status));
}

HotKeyService::Status HotKey::pressed(HotKeyID id) {
  const auto found = entries_.find(id.id);
  if (id.signature != signature || found == entries_.end()) return HotKeyService::notHandled;
  found->second.action();
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
