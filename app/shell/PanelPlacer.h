// PanelPlacer: brings a panel that the user has given no place beside Excel's window. Where that is
// only Excel knows, which may be starting, busy or absent: it is asked on the bridge queue, again
// after a moment, and again whenever it comes forward, until it has answered. A window that has
// just opened may still be moving: an answer counts when the next one is the same.
//
// Main thread only; owned by the application delegate, and ends before the panel.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/shell/Panel.h"

namespace quorin {

class PanelPlacer {
 public:
  // What is given must outlive the placer.
  PanelPlacer(AppPlatform& platform, PanelBridge& bridge, Panel& panel)
      : platform_(platform), bridge_(bridge), panel_(panel) {}

  // Shows the panel with the keyboard and sends the event: where the user put it, or else beside
  // Excel's window. An Excel that does not tell at once where that is does not hold the panel back:
  // it is moved later.
  void showBesideExcel(const Panel::Event& event);

  // Moves the panel beside Excel's window, unless that was done before.
  void place();

 private:
  void ask();
  void told(const std::optional<BridgeShapes::WindowBounds>& excel);
  void showPending(const std::optional<BridgeShapes::WindowBounds>& excel);

  AppPlatform& platform_;
  PanelBridge& bridge_;
  Panel& panel_;
  std::optional<BridgeShapes::WindowBounds> told_;  // where Excel's window was last
  bool asking_ = false;
  int attempts_ = 0;
  std::vector<Panel::Event> pending_;  // the panel is to be shown and then told these
  std::unique_ptr<Timer> patience_, again_;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
