// HotKey: the five global key combinations and what they do. Three bring the panel up on one of its
// views, two step through the page while the panel is visible. Main thread only; owned by the
// application delegate.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
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

  // Registers all combinations, once. One that the system refuses is logged and does nothing.
  void registerAll(HotKeyService& service, const QXConfig& config);

  // Runs the action of a registered combination; any other is not handled.
  HotKeyService::Status pressed(HotKeyID id);

  // Brings the panel up with the keyboard on "tree", "map" or "deps", and tells the page the view
  // and how the panel was before.
  void surface(const std::string& view);

  // One step in the page, back (-1) or on (1); nothing while the panel is hidden.
  void step(int direction);

 private:
  using Action = std::function<void()>;

  Parts parts_;
  std::map<std::uint32_t, Action> handlers_;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
