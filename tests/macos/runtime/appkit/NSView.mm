// Views, and buttons that can be pressed.
#import <AppKit/AppKit.h>
#include <vector>

#include "tests/macos/runtime/appkit/Hands.h"
#import "tests/macos/runtime/appkit/Shown.h"
#include "tests/macos/runtime/foundation/Raise.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

@implementation NSResponder
@synthesize nextResponder = _nextResponder;
@end

@interface NSView () {
 @public
  NSMutableArray<NSView*>* _views;
  NSView* __unsafe_unretained _above;
}
@end

@implementation NSView
@synthesize hidden = _hidden, autoresizingMask = _autoresizingMask;

- (instancetype)initWithFrame:(NSRect)frame {
  onMainThread("a view");
  _views = [[NSMutableArray alloc] init];
  _frame = frame;
  _bounds = NSMakeRect(0, 0, frame.size.width, frame.size.height);
  return self;
}
- (void)dealloc {
  for (NSView* each in _views) each->_above = nil;
}
- (NSArray<NSView*>*)subviews {
  return [_views copy];
}
- (NSView*)superview {
  return _above;
}
// "The view is removed from its former superview."
- (void)addSubview:(NSView*)view {
  onMainThread("addSubview:");
  if (!view) raise("NSInvalidArgumentException", "addSubview: of nil");
  [view removeFromSuperview];
  [_views addObject:view];
  view->_above = self;
  [view windowChanged];
}
- (void)windowChanged {
  for (NSView* each in _views) [each windowChanged];
}
- (void)removeFromSuperview {
  NSView* above = _above;
  if (!above) return;
  NSArray<NSView*>* before = [above->_views copy];
  _above = nil;
  [above->_views removeAllObjects];
  for (NSView* each in before) {
    if (each != self) [above->_views addObject:each];
  }
}
- (void)setFrame:(NSRect)frame {
  onMainThread("-[NSView setFrame:]");
  const NSSize before = _frame.size;
  _frame = frame;
  _bounds.size = frame.size;
  for (NSView* each in _views) {
    NSRect inside = each.frame;
    if (each.autoresizingMask & NSViewWidthSizable)
      inside.size.width += frame.size.width - before.width;
    if (each.autoresizingMask & NSViewHeightSizable)
      inside.size.height += frame.size.height - before.height;
    each.frame = inside;
  }
}

@end

@implementation NSControl
@synthesize target = _target, action = _action, tag = _tag, enabled = _enabled;

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  _enabled = YES;
  return self;
}
- (void)performClick:(id)sender {
  onMainThread("performClick:");
  NSObject* target = _target;
  if (!_enabled || !target) return;
  (void)objc::send<objc::Object*>((__bridge objc::Object*)target, (objc::Selector)_action,
                                  (__bridge objc::Object*)self);
}

@end

@implementation NSButton
@synthesize title = _title, image = _image, state = _state;
@end

@implementation QXFakeButton {
  void (^_pressed)(void);
}

+ (NSButton*)withTitle:(NSString*)title pressed:(void (^)(void))pressed {
  QXFakeButton* made = [[QXFakeButton alloc] initWithFrame:NSMakeRect(0, 0, 80, 20)];
  made.title = title;
  made->_pressed = pressed;
  return made;
}
- (void)performClick:(id)sender {
  onMainThread("performClick:");
  _pressed();
}

@end
