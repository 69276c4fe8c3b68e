#include "app/shell/SelectionSign.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace quorin {

void SelectionSign::start(std::int64_t intervalMs, Handler handler) {
  handler_ = std::move(handler);
  setInterval(intervalMs);
}

void SelectionSign::setInterval(std::int64_t intervalMs) {
  timer_.reset();
  timer_ = platform_.mainLoop().startTimer(std::chrono::milliseconds(intervalMs),
                                           TimerKind::repeating, [this] { tick(); });
}

void SelectionSign::forget() {
  last_.reset();
  done_ = false;
}

void SelectionSign::tick() {
  const Workspace& workspace = platform_.workspace();
  if (workspace.tellsWhoIsInFront() || !excelIsFrontmost(workspace)) return forget();
  done_ = done_ || panel_.isVisible();
  if (done_ || inFlight_ || poller_.paused()) return;
  inFlight_ = true;
  panel_.bridgeQueue().post(
      [this, &bridge = bridge_, &loop = platform_.mainLoop(), alive = std::weak_ptr(alive_)] {
        loop.post([this, alive, outcome = Poller::ask(bridge)] {
          if (!alive.expired()) told(outcome ? BridgeShapes::cellPlace(*outcome) : std::nullopt);
        });
      });
}

void SelectionSign::told(const std::optional<BridgeShapes::CellPlace>& cell) {
  inFlight_ = false;
  if (!cell || done_) return;
  const std::optional<BridgeShapes::CellPlace> before = std::exchange(last_, cell);
  const auto excel = platform_.workspace().frontmostApplication();
  if (!before || before == cell || !excel || panel_.isVisible()) return;
  done_ = true;
  handler_(*excel);
}

}  // namespace quorin
