#include "kit/shapes/PanelPlacement.h"

namespace quorin::BridgeShapes {

ScreenFrame panelFrameBesideExcel(const WindowBounds& excel, double screenHeight,
                                  const ScreenFrame& visible, const ScreenSize& size) {
  ScreenFrame frame{excel.x2, screenHeight - excel.y1 - size.height, size.width, size.height};
  if (frame.maxX() > visible.maxX()) frame.x = visible.maxX() - size.width;
  if (frame.x < visible.x) frame.x = visible.x;
  if (frame.maxY() > visible.maxY()) frame.y = visible.maxY() - size.height;
  if (frame.y < visible.y) frame.y = visible.y;
  return frame;
}

std::optional<WindowBounds> windowBounds(const JSONValue& probe) {
  const JSONValue* window = probe.member("excelWindow");
  if (!window) return std::nullopt;
  const auto number = [&](const char* key) -> const double* {
    const JSONValue* member = window->member(key);
    return member ? member->number() : nullptr;
  };
  const double *x1 = number("x1"), *y1 = number("y1"), *x2 = number("x2"), *y2 = number("y2");
  if (!x1 || !y1 || !x2 || !y2) return std::nullopt;
  return WindowBounds{*x1, *y1, *x2, *y2};
}

CompanionAction companionAction(bool frontIsExcel, bool frontIsSelf, bool enabled,
                                bool panelVisible) {
  if (frontIsSelf) return CompanionAction::ignore;
  if (frontIsExcel) {
    return enabled && !panelVisible ? CompanionAction::show : CompanionAction::ignore;
  }
  return panelVisible ? CompanionAction::hide : CompanionAction::ignore;
}

std::string_view name(CompanionAction action) {
  switch (action) {
    case CompanionAction::show:
      return "show";
    case CompanionAction::hide:
      return "hide";
    case CompanionAction::ignore:
      break;
  }
  return "ignore";
}

}  // namespace quorin::BridgeShapes
