#include "app/shell/Poller.h"

#include <array>
#include <utility>

namespace quorin {

using BridgeShapes::CellPlace;

namespace {

constexpr std::chrono::milliseconds quietPeriod{500};
constexpr int failuresUntilProbe = 3;
// From the user's input to the first tick, and from each tick to the next. Excel is most likely to
// answer between having moved and drawing the window anew, during which it answers nobody: so these
// are close to each other at first.
constexpr std::array<std::chrono::milliseconds, 7> delaysOfTicksSoon{
    {std::chrono::milliseconds(8), std::chrono::milliseconds(6), std::chrono::milliseconds(6),
     std::chrono::milliseconds(8), std::chrono::milliseconds(12), std::chrono::milliseconds(55),
     std::chrono::milliseconds(120)}};

}  // namespace

bool excelIsFrontmost(const Workspace& workspace) {
  const std::optional<RunningApplication> front = workspace.frontmostApplication();
  return front && front->identifier == excelIdentifier;
}

Poller::Poller(AppPlatform& platform, PanelBridge& bridge, Panel& panel, std::int64_t intervalMs)
    : platform_(platform), bridge_(bridge), panel_(panel), interval_(intervalMs) {}

void Poller::start() {
  startTimer();
  if (UserInput* const input = platform_.userInput()) {
    input->observe([this, alive = std::weak_ptr(alive_)] {
      if (!alive.expired()) nudge();
    });
  }
}

void Poller::startTimer() {
  timer_.reset();
  timer_ = platform_.mainLoop().startTimer(interval_, TimerKind::repeating, [this] { tick(); });
}

void Poller::setInterval(std::int64_t intervalMs) {
  interval_ = std::chrono::milliseconds(intervalMs);
  if (timer_) startTimer();
}

bool Poller::isUseful() const {
  return panel_.isVisible() && !paused_ && excelIsFrontmost(platform_.workspace()) &&
         !panel_.isKey();
}

void Poller::nudge() {
  nudgedAgain_ = soon_ != nullptr;
  if (soon_ || !isUseful()) return;
  ticksSoon_ = 0;
  tickSoon();
}

void Poller::tickSoon() {
  if (ticksSoon_ == delaysOfTicksSoon.size()) {
    endTicksSoon();
    return;
  }
  soon_ = platform_.mainLoop().startTimer(delaysOfTicksSoon[ticksSoon_++], TimerKind::once, [this] {
    tick();
    tickSoon();
  });
}

void Poller::endTicksSoon() {
  soon_.reset();
  if (std::exchange(nudgedAgain_, false)) nudge();
}

void Poller::tick() {
  if (inFlight_ || !isUseful()) return;
  if (adoptBaseline()) return;
  // A move in the future means that the clock was set back, and says nothing about how long ago it
  // was. The time of no move at all lies too far back to be subtracted.
  const auto now = platform_.clock().now();
  const auto ownMove = bridge_.lastProgrammaticNav();
  if (ownMove <= now && ownMove > now - quietPeriod) return;
  inFlight_ = true;
  poll([this](const Outcome& outcome) { finish(outcome); });
}

void Poller::finish(const Outcome& outcome) {
  inFlight_ = false;
  if (!outcome) {
    if (++failures_ == failuresUntilProbe) panel_.sendEvent("probeNeeded", JSONValue::Object{});
    return;
  }
  failures_ = 0;
  if (adoptBaseline()) return;
  std::optional<CellPlace> cell = BridgeShapes::cellPlace(*outcome);
  if (!cell || cell == last_) return;
  last_ = std::move(cell);
  endTicksSoon();  // the selection has moved
  if (panel_.isVisible()) panel_.sendEvent("selectionChanged", *outcome);
}

void Poller::seedBaseline() {
  poll([this](const Outcome& outcome) {
    if (!outcome) return;
    if (std::optional<CellPlace> cell = BridgeShapes::cellPlace(*outcome))
      baseline_ = std::move(cell);
  });
}

bool Poller::adoptBaseline() {
  if (!baseline_) return false;
  last_ = std::exchange(baseline_, std::nullopt);
  return true;
}

// Asks on the bridge queue and tells the outcome on the main thread, unless the poller is gone.
void Poller::poll(std::function<void(const Outcome&)> then) {
  panel_.bridgeQueue().post([&bridge = bridge_, &loop = platform_.mainLoop(),
                             alive = std::weak_ptr(alive_), then = std::move(then)] {
    loop.post([alive, then, outcome = ask(bridge)] {
      if (!alive.expired()) then(outcome);
    });
  });
}

Poller::Outcome Poller::ask(PanelBridge& bridge) {
  try {
    return bridge.pollCell();
  } catch (...) {
    return std::nullopt;
  }
}

}  // namespace quorin
