#include "app/macos/MacSaveDialog.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <utility>

#include "app/macos/Edge.h"
#import "app/macos/Text.h"

namespace quorin {
namespace {

void askNow(const std::string& name, const SaveDialog::Answer& answer) {
  NSSavePanel* panel = [NSSavePanel savePanel];
  panel.nameFieldStringValue = toNSString(name);
  if ([panel runModal] == NSModalResponseOK) {
    answer(fromFileURL(panel.URL));
  } else {
    answer(std::nullopt);
  }
}

}  // namespace

// Not inside of this call, which is one of the web view's: the page would wait for the user as
// well.
void MacSaveDialog::ask(const std::string& name, Answer answer) {
  const auto kept = std::make_shared<const std::pair<std::string, Answer>>(name, std::move(answer));
  [NSRunLoop.mainRunLoop performBlock:^{
    atEdge("save panel", [&] { askNow(kept->first, kept->second); });
  }];
}

}  // namespace quorin
