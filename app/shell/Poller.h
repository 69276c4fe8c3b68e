// Poller: follows Excel's selection. Excel tells nobody that it moved, so its active cell is asked
// for on a timer, while that is useful: the panel visible and without the keyboard, Excel in
// front, following not paused. The page hears of a cell once. Never two polls at a time.
//
// Where the desktop tells that the user does something, Excel is asked soon after it as well: a few
// times, for Excel may not have come to it yet, and until the cell has changed. While the user goes
// on, that goes on, and nothing piles up.
//
// Main thread only, but for the polls themselves, which run on the panel's bridge queue.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/shell/Panel.h"
#include "kit/shapes/CellPlace.h"

namespace quorin {

// True if Excel is the application in front.
bool excelIsFrontmost(const Workspace& workspace);

class Poller {
 public:
  Poller(AppPlatform& platform, PanelBridge& bridge, Panel& panel, std::int64_t intervalMs);

  // Starts the timer, in place of the one that runs.
  void start();

  // From now on the timer fires so often.
  void setInterval(std::int64_t intervalMs);

  // Takes the cell that Excel is on now as known, once it has answered.
  void seedBaseline();

  // Takes this cell as known; the next tick or poll adopts it without a word to the page.
  void setBaseline(BridgeShapes::CellPlace cell) { baseline_ = std::move(cell); }

  bool paused() const { return paused_; }
  void setPaused(bool paused) { paused_ = paused; }
  bool inFlight() const { return inFlight_; }

  // The answer of a poll; none when it failed. On the bridge queue.
  using Outcome = std::optional<JSONValue>;
  static Outcome ask(PanelBridge& bridge);

 private:
  bool isUseful() const;
  void startTimer();
  void tick();
  void nudge();
  void tickSoon();
  void endTicksSoon();
  void finish(const Outcome& outcome);
  bool adoptBaseline();
  void poll(std::function<void(const Outcome&)> then);

  AppPlatform& platform_;
  PanelBridge& bridge_;
  Panel& panel_;
  std::chrono::milliseconds interval_;
  std::unique_ptr<Timer> timer_;
  std::unique_ptr<Timer> soon_;  // while ticks after the user's input are due
  std::size_t ticksSoon_ = 0;    // of them, those that have been
  bool nudgedAgain_ = false;
  std::optional<BridgeShapes::CellPlace> last_, baseline_;
  int failures_ = 0;
  bool paused_ = false;
  bool inFlight_ = false;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
