// HotKey: the five global key combinations and what they do. Three bring the panel up on one of its
// views, two step through the page while the panel is visible. Main thread only; owned by the
// application delegate.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "app/shell/PanelPlacer.h"
#include "app/shell/ports/HotKeyService.h"
#include "kit/support/QXConfig.h"

namespace quorin {

class HotKey {
 public:
  static constexpr std::uint32_t signature = 0x51584E53;  // 'QXNS'
  static constexpr std::uint32_t leftArrow = 123, rightArrow = 124;
  static constexpr std::uint32_t controlOption = 6144;

  // Everything here must outlive the object; the handler that it gives to the service finds out by
  // itself when the object is gone.
  struct Parts {
    AppPlatform& platform;
    Panel& panel;
    PanelPlacer& placer;
    DiagLog& log;
  };

  explicit HotKey(Parts parts);

  static constexpr std::uint32_t backID = 2, onID = 3;  // those of the views are in Views.h

  // Registers all combinations, once. One that the system refuses is logged and does nothing.
  void registerAll(HotKeyService& service, const QXConfig& config);

  // Registers those that the settings have otherwise now, in the same way.
  void apply(const QXConfig& config);

  // Registers the combination in place of the one of this number. Where the system refuses it,
  // which is not logged, the one before stays. Gives the system's status.
  HotKeyService::Status change(std::uint32_t id, const KeyCombination& combination);

  // How the system took the combination of this number when it was registered last.
  HotKeyService::Status status(std::uint32_t id) const;

  // Which of ours it is; none for none of ours.
  std::optional<std::uint32_t> idOf(const KeyCombination& combination) const;

  // Paused combinations reach the window that has the keyboard, so that a new one can be pressed
  // there. Ends by itself after a while: whoever asked for it may be gone.
  void setPaused(bool paused);

  // Runs the action of a registered combination; any other is not handled.
  HotKeyService::Status pressed(HotKeyID id);

  // Brings the panel up with the keyboard on the view of this name (Views.h), and tells the page
  // the view and how the panel was before.
  void surface(const std::string& view);

  // One step in the page, back (-1) or on (1); nothing while the panel is hidden.
  void step(int direction);

 private:
  struct Entry {
    std::function<void()> action;
    KeyCombination combination;
    HotKeyService::Status status = HotKeyService::noError;
  };

  HotKeyService::Status add(std::uint32_t id, const KeyCombination& combination);
  void remove(std::uint32_t id);
  void addOrLog(std::uint32_t id, const KeyCombination& combination);

  Parts parts_;
  HotKeyService* service_ = nullptr;
  std::map<std::uint32_t, Entry> entries_;
  std::unique_ptr<Timer> pause_;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
