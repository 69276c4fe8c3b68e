#include "app/shell/PanelPlacer.h"

#include <utility>

namespace quorin {

using BridgeShapes::WindowBounds;

namespace {

constexpr std::chrono::milliseconds patience{300};
constexpr std::chrono::milliseconds betweenAttempts{1000};
constexpr int attemptsInARow = 30;

}  // namespace

void PanelPlacer::showBesideExcel(const Panel::Event& event) {
  pending_.push_back(event);
  if (panel_.hasSavedFrame()) return showPending(std::nullopt);
  patience_ = platform_.mainLoop().startTimer(patience, TimerKind::once,
                                              [this] { showPending(std::nullopt); });
  attempts_ = 0;
  ask();
}

void PanelPlacer::place() {
  if (told_ || panel_.hasSavedFrame()) return;
  attempts_ = 0;
  ask();
}

void PanelPlacer::ask() {
  if (std::exchange(asking_, true)) return;
  again_.reset();
  panel_.bridgeQueue().post(
      [this, alive = std::weak_ptr(alive_), &bridge = bridge_, &loop = platform_.mainLoop()] {
        loop.post([this, alive, excel = BridgeShapes::windowBounds(bridge.probe())] {
          if (!alive.expired()) told(excel);
        });
      });
}

void PanelPlacer::told(const std::optional<WindowBounds>& excel) {
  asking_ = false;
  const bool moved = excel && excel != told_;
  if (excel) told_ = excel;
  if (!pending_.empty()) {
    showPending(excel);
  } else if (moved) {
    panel_.positionBeside(*excel);
  }
  if ((excel && !moved) || ++attempts_ > attemptsInARow) return;
  again_ = platform_.mainLoop().startTimer(betweenAttempts, TimerKind::once, [this] {
    if (!panel_.hasSavedFrame()) ask();
  });
}

void PanelPlacer::showPending(const std::optional<WindowBounds>& excel) {
  patience_.reset();
  for (const Panel::Event& event : std::exchange(pending_, {})) panel_.show(excel, event);
}

}  // namespace quorin
