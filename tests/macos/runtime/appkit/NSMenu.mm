// Menus and the icons in the menu bar, which keeps its items until they are removed.
#import <AppKit/AppKit.h>
#include <algorithm>

#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

@implementation NSMenuItem
@synthesize title = _title, enabled = _enabled, state = _state, target = _target, action = _action,
            tag = _tag, submenu = _submenu, keyEquivalent = _keyEquivalent;

- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key {
  if (!title || !key) raise("NSInvalidArgumentException", "a menu item with a nil text");
  _title = title;
  _action = action;
  _keyEquivalent = key;
  _enabled = YES;
  return self;
}
+ (NSMenuItem*)separatorItem {
  NSMenuItem* made = [[NSMenuItem alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
  made->_separatorItem = YES;
  return made;
}

@end

@implementation NSMenu {
  std::vector<NSMenuItem*> _items;
}
@synthesize autoenablesItems = _autoenablesItems, delegate = _delegate, title = _title;

- (instancetype)initWithTitle:(NSString*)title {
  onMainThread("a menu");
  _title = title;
  _autoenablesItems = YES;
  return self;
}
- (void)addItem:(NSMenuItem*)item {
  onMainThread("addItem:");
  if (!item) raise("NSInvalidArgumentException", "addItem: of nil");
  _items.push_back(item);
}
- (NSMenuItem*)addItemWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key {
  NSMenuItem* made = [[NSMenuItem alloc] initWithTitle:title action:action keyEquivalent:key];
  [self addItem:made];
  return made;
}
- (void)removeAllItems {
  onMainThread("removeAllItems");
  _items.clear();
}
- (NSInteger)numberOfItems {
  return static_cast<NSInteger>(_items.size());
}
// AppKit asserts here rather than answering nil.
- (NSMenuItem*)itemAtIndex:(NSInteger)index {
  if (index < 0 || index >= self.numberOfItems)
    raise("NSInternalInconsistencyException", "itemAtIndex: beyond the menu");
  return _items[static_cast<std::size_t>(index)];
}

@end

@implementation NSStatusBarButton
@end

@implementation NSStatusItem
@synthesize menu = _menu, length = _length;

- (instancetype)init {
  _button = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(0, 0, 24, 22)];
  return self;
}

@end

@implementation NSStatusBar {
 @public
  std::vector<NSStatusItem*> _items;
}

+ (NSStatusBar*)systemStatusBar {
  static NSStatusBar* one = [] {
    NSStatusBar* made = [[NSStatusBar alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  return one;
}
// The owner has to keep the item, too; that it goes otherwise is documented for the old bar. Here
// the bar keeps it, so that one which nobody removes is counted as left.
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
  onMainThread("statusItemWithLength:");
  NSStatusItem* made = [[NSStatusItem alloc] init];
  made.length = length;
  _items.push_back(made);
  return made;
}
- (void)removeStatusItem:(NSStatusItem*)item {
  onMainThread("removeStatusItem:");
  std::erase(_items, item);
}

@end

@implementation NSImage {
  BOOL _template;
}

+ (NSImage*)imageNamed:(NSImageName)name {
  return read(name) == "MenuBarIcon" ? [[NSImage alloc] init] : nil;
}
- (void)setTemplate:(BOOL)isTemplate {
  _template = isTemplate;
}
- (BOOL)isTemplate {
  return _template;
}

@end

namespace quorin {

std::vector<NSImage*> imagesInTheBar() {
  std::vector<NSImage*> images;
  for (NSStatusItem* each : NSStatusBar.systemStatusBar->_items)
    images.push_back(each.button.image);
  return images;
}

std::vector<NSMenu*> menusInTheBar() {
  std::vector<NSMenu*> menus;
  for (NSStatusItem* each : NSStatusBar.systemStatusBar->_items) menus.push_back(each.menu);
  return menus;
}

// "Key equivalents are looked for in all menus of the main menu", and their actions are sent to the
// first responder when the items have no target.
std::string commandOfKey(const std::string& key) {
  NSMenu* bar = NSApplication.sharedApplication.mainMenu;
  for (NSInteger i = 0; i < bar.numberOfItems; ++i) {
    NSMenu* menu = [bar itemAtIndex:i].submenu;
    for (NSInteger k = 0; k < menu.numberOfItems; ++k) {
      NSMenuItem* item = [menu itemAtIndex:k];
      if (read(item.keyEquivalent) == key && !item.target && item.enabled)
        return reinterpret_cast<objc::Selector>(item.action);
    }
  }
  return {};
}

static void open(NSMenu* menu) {
  id<NSMenuDelegate> delegate = menu.delegate;
  if ([delegate respondsToSelector:@selector(menuWillOpen:)]) [delegate menuWillOpen:menu];
}

// "A menu that enables its items by itself" asks whether the target has the action, and nothing
// else.
static bool press(NSMenuItem* item, NSMenu* menu) {
  NSObject* target = item.target;
  const bool enabled =
      menu.autoenablesItems ? [target respondsToSelector:item.action] : item.enabled;
  if (item.separatorItem || !enabled || !target) return false;
  (void)objc::send<objc::Object*>((__bridge objc::Object*)target, (objc::Selector)item.action,
                                  (__bridge objc::Object*)item);
  return true;
}

bool userChooses(NSMenu* menu, NSInteger index) {
  open(menu);
  return index < menu.numberOfItems && press([menu itemAtIndex:index], menu);
}

bool userChooses(NSMenu* menu, const std::string& title) {
  open(menu);
  for (NSInteger i = 0; i < menu.numberOfItems; ++i) {
    NSMenuItem* item = [menu itemAtIndex:i];
    if (read(item.title) == title) return press(item, menu);
  }
  return false;
}

}  // namespace quorin
