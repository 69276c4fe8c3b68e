// Which window a view is in, and how views hear that it is shown, hidden, or has the keys. Main
// thread only.
#pragma once

#import <AppKit/AppKit.h>

@interface NSView (QXShown)
- (void)windowChanged;  // of the view's and of those in it
@end

namespace quorin {

NSWindow* windowOf(NSView* view);  // nil: none

}  // namespace quorin
