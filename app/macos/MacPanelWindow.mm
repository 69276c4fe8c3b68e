#import "app/macos/MacPanelWindow.h"

#include "app/macos/Edge.h"
#import "app/macos/MacWebView.h"
#import "app/macos/Text.h"
#include "app/shell/ScreenPlacement.h"
#include "kit/platform/Fatal.h"

@interface QXPanel : NSPanel
@property(nonatomic, assign, nullable) quorin::PanelWindowDelegate* closeReceiver;
@end

@implementation QXPanel

// A panel that does not activate its application takes the keyboard only if it says so.
- (BOOL)canBecomeKeyWindow {
  return YES;
}

// Every way of closing ends here; the window stays as it is.
- (void)close {
  quorin::PanelWindowDelegate* receiver = self.closeReceiver;
  if (receiver) quorin::atEdge("close", [&] { receiver->panelWindowCloseRequested(); });
}

@end

namespace quorin {
namespace {

NSRect toRect(const ScreenFrame& frame) {
  return NSMakeRect(frame.x, frame.y, frame.width, frame.height);
}

ScreenFrame fromRect(NSRect rect) {
  return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

std::optional<Screen> described(NSScreen* _Nullable screen) {
  if (!screen) return std::nullopt;
  return Screen{fromRect(screen.frame), fromRect(screen.visibleFrame)};
}

QXPanel* makePanel(const PanelWindowOptions& options) {
  QXPanel* panel = [[QXPanel alloc]
      initWithContentRect:toRect(options.contentFrame)
                styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                          NSWindowStyleMaskResizable | NSWindowStyleMaskUtilityWindow |
                          NSWindowStyleMaskNonactivatingPanel
                  backing:NSBackingStoreBuffered
                    defer:NO];
  panel.title = toNSString(options.title);
  panel.level = NSFloatingWindowLevel;
  panel.releasedWhenClosed = NO;
  panel.hidesOnDeactivate = NO;
  panel.collectionBehavior =
      NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
  panel.contentMinSize =
      NSMakeSize(options.minimumContentSize.width, options.minimumContentSize.height);
  if (![panel setFrameAutosaveName:toNSString(options.frameAutosaveName)]) {
    NSLog(@"another window keeps its frame as %s", options.frameAutosaveName.c_str());
  }
  return panel;
}

}  // namespace

// AppKit gives the panel the frame that it saved; the screen of then may be gone.
MacPanelWindow::MacPanelWindow(const PanelWindowOptions& options) : panel_(makePanel(options)) {
  const ScreenFrame inReach = ScreenPlacement::constrained(frame(), screens());
  if (inReach != frame()) setFrame(inReach);
}

MacPanelWindow::~MacPanelWindow() {
  panel_.closeReceiver = nullptr;
  [panel_ orderOut:nil];
}

void MacPanelWindow::setDelegate(PanelWindowDelegate* delegate) {
  panel_.closeReceiver = delegate;
}

void MacPanelWindow::setContent(WebView& view) {
  NSView* content = panel_.contentView;
  if (!content) fatal("the panel has no content view");
  NSView* page = static_cast<MacWebView&>(view).view();
  page.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
  page.frame = content.bounds;
  [content addSubview:page];
}

ScreenFrame MacPanelWindow::frame() const {
  return fromRect(panel_.frame);
}

void MacPanelWindow::setFrame(const ScreenFrame& frame) {
  [panel_ setFrame:toRect(frame) display:YES];
}

ScreenSize MacPanelWindow::minimumContentSize() const {
  const NSSize size = panel_.contentMinSize;
  return {size.width, size.height};
}

bool MacPanelWindow::isVisible() const {
  return panel_.visible;
}

bool MacPanelWindow::isKey() const {
  return panel_.keyWindow;
}

void MacPanelWindow::orderFront() {
  [panel_ orderFront:nil];
}

void MacPanelWindow::makeKeyAndOrderFront() {
  [panel_ makeKeyAndOrderFront:nil];
}

void MacPanelWindow::resignKey() {
  [panel_ resignKeyWindow];
  [panel_ orderFrontRegardless];
}

void MacPanelWindow::orderOut() {
  [panel_ orderOut:nil];
}

std::vector<Screen> MacPanelWindow::screens() const {
  std::vector<Screen> found;
  for (NSScreen* each in NSScreen.screens) {
    found.push_back({fromRect(each.frame), fromRect(each.visibleFrame)});
  }
  return found;
}

std::optional<Screen> MacPanelWindow::screen() const {
  return described(panel_.screen);
}

std::optional<Screen> MacPanelWindow::mainScreen() const {
  return described(NSScreen.mainScreen);
}

}  // namespace quorin
