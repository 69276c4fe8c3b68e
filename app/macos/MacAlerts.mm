#include "app/macos/MacAlerts.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <memory>
#include <utility>

#include "app/macos/Edge.h"
#import "app/macos/Text.h"

namespace quorin {
namespace {

void showNow(const Alert& alert, const Alerts::Answer& answer) {
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

}  // namespace

// Not inside of this call, which may be one of the main queue's: that queue would wait for the user
// as well, and with it the replies to the page. The mode is the one in which no other alert runs.
void MacAlerts::show(const Alert& alert, Answer answer) {
  const auto kept = std::make_shared<const std::pair<Alert, Answer>>(alert, std::move(answer));
  [NSRunLoop.mainRunLoop performBlock:^{
    atEdge("alert", [&] { showNow(kept->first, kept->second); });
  }];
}

}  // namespace quorin
