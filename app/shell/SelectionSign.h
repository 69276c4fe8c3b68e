// SelectionSign: where the desktop does not tell which application is in front, a selection that
// moves says that someone works in Excel. Looks for that while the panel is hidden, and tells it
// once: not again before Excel has ended, or the desktop has told something after all, so that a
// panel which the user has closed stays closed.
//
// Main thread only, but for the polls themselves, which run on the panel's bridge queue.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "app/shell/Poller.h"

namespace quorin {

class SelectionSign {
 public:
  using Handler = std::function<void(const RunningApplication& excel)>;

  // What is given must outlive the object. While the poller is paused nothing is looked for.
  SelectionSign(AppPlatform& platform, PanelBridge& bridge, Panel& panel, const Poller& poller)
      : platform_(platform), bridge_(bridge), panel_(panel), poller_(poller) {}

  void start(std::int64_t intervalMs, Handler handler);
  void setInterval(std::int64_t intervalMs);

 private:
  void tick();
  void forget();
  void told(const std::optional<BridgeShapes::CellPlace>& cell);

  AppPlatform& platform_;
  PanelBridge& bridge_;
  Panel& panel_;
  const Poller& poller_;
  Handler handler_;
  std::unique_ptr<Timer> timer_;
  std::optional<BridgeShapes::CellPlace> last_;
  bool done_ = false;
  bool inFlight_ = false;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
