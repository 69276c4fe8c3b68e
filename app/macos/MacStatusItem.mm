#import "app/macos/MacStatusItem.h"

#include "app/macos/Edge.h"
#import "app/macos/Text.h"

@interface QXMenuReceiver : NSObject <NSMenuDelegate>
@property(nonatomic, assign, nullable) quorin::StatusItemDelegate* receiver;
- (void)chooseItem:(nonnull NSMenuItem*)item;
@end

@implementation QXMenuReceiver

- (void)menuWillOpen:(NSMenu*)menu {
  quorin::StatusItemDelegate* receiver = self.receiver;
  if (!receiver) return;
  quorin::atEdge("menu", [&] { receiver->menuWillOpen(); });
}

- (void)chooseItem:(NSMenuItem*)item {
  quorin::StatusItemDelegate* receiver = self.receiver;
  if (!receiver) return;
  const auto index = static_cast<std::size_t>(item.tag);
  quorin::atEdge("menu", [&] { receiver->menuItemChosen(index); });
}

@end

namespace quorin {
namespace {

void describe(NSMenuItem* shown, const MenuItem& item) {
  shown.title = toNSString(item.title);
  shown.enabled = item.enabled;
  shown.state = item.checked ? NSControlStateValueOn : NSControlStateValueOff;
}

// Black and clear alone: the system colours it for light and dark bars.
NSImage* _Nullable templateImage(const std::string& name) {
  NSImage* image = [NSImage imageNamed:toNSString(name)];
  [image setTemplate:YES];
  return image;
}

}  // namespace

MacStatusItem::MacStatusItem(const std::string& imageName)
    : item_([NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]),
      menu_([[NSMenu alloc] initWithTitle:@""]),
      receiver_([[QXMenuReceiver alloc] init]) {
  NSImage* image = templateImage(imageName);
  item_.button.image = image;
  if (!image) item_.button.title = @"Quorin";
  menu_.autoenablesItems = NO;
  menu_.delegate = receiver_;
  item_.menu = menu_;
}

MacStatusItem::~MacStatusItem() {
  receiver_.receiver = nullptr;
  menu_.delegate = nil;
  [NSStatusBar.systemStatusBar removeStatusItem:item_];
}

void MacStatusItem::setDelegate(StatusItemDelegate* delegate) {
  receiver_.receiver = delegate;
}

void MacStatusItem::setMenu(const std::vector<MenuItem>& items) {
  [menu_ removeAllItems];
  NSInteger index = 0;
  for (const MenuItem& item : items) {
    NSMenuItem* shown = item.title.empty()
                            ? [NSMenuItem separatorItem]
                            : [[NSMenuItem alloc] initWithTitle:@""
                                                         action:@selector(chooseItem:)
                                                  keyEquivalent:@""];
    if (!shown.separatorItem) {
      describe(shown, item);
      shown.target = receiver_;
    }
    shown.tag = index++;
    [menu_ addItem:shown];
  }
}

void MacStatusItem::setItem(std::size_t index, const MenuItem& item) {
  const auto at = static_cast<NSInteger>(index);
  if (at >= menu_.numberOfItems) return;
  NSMenuItem* shown = [menu_ itemAtIndex:at];
  if (shown) describe(shown, item);
}

}  // namespace quorin
