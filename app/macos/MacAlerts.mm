#include "app/macos/MacAlerts.h"

#import <AppKit/AppKit.h>
#include <algorithm>

#import "app/macos/Text.h"

namespace quorin {

void MacAlerts::show(const Alert& alert, Answer answer) {
  NSAlert* panel = [[NSAlert alloc] init];
  panel.messageText = toNSString(alert.message);
  panel.informativeText = toNSString(alert.informativeText);
  for (const std::string& title : alert.buttons) [panel addButtonWithTitle:toNSString(title)];
  const NSModalResponse response = [panel runModal];
  // The first button answers 1000, the next 1001; the negative answers are those of an alert that
  // was stopped from elsewhere.
  const auto last = static_cast<NSInteger>(std::max<std::size_t>(alert.buttons.size(), 1)) - 1;
  const NSInteger pressed = response - NSAlertFirstButtonReturn;
  const bool ordinary = pressed >= 0 && pressed <= last;
  answer(static_cast<std::size_t>(ordinary ? pressed : last));
}

}  // namespace quorin
