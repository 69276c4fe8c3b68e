#import "app/macos/MacPanelWindow.h"

#include <utility>

#include "app/macos/Edge.h"
#include "app/macos/MacDefaults.h"
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

// Tells of every change of the frame, whoever made it.
@interface QXFrameObserver : NSObject <NSWindowDelegate>
@property(nonatomic, assign, nullable) quorin::MacPanelWindow* receiver;
@end

namespace {

void tell(QXFrameObserver* observer) {
  quorin::MacPanelWindow* receiver = observer.receiver;
  if (receiver) quorin::atEdge("frame", [&] { receiver->frameChanged(); });
}

}  // namespace

@implementation QXFrameObserver

- (void)windowDidMove:(NSNotification*)notification {
  tell(self);
}

- (void)windowDidResize:(NSNotification*)notification {
  tell(self);
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
  return panel;
}

}  // namespace

MacPanelWindow::MacPanelWindow(const PanelWindowOptions& options)
    : frameKey_("NSWindow Frame " + options.frameAutosaveName),
      panel_(makePanel(options)),
      observer_([[QXFrameObserver alloc] init]) {
  restoreFrame();
  observer_.receiver = this;
  panel_.delegate = observer_;
}

MacPanelWindow::~MacPanelWindow() {
  observer_.receiver = nullptr;
  panel_.delegate = nil;
  panel_.closeReceiver = nullptr;
  [panel_ orderOut:nil];
}

// The screen of then may be gone.
void MacPanelWindow::restoreFrame() {
  const auto text = MacDefaults().string(frameKey_);
  const auto saved = text ? ScreenPlacement::savedFrame(*text) : std::nullopt;
  setFrame(ScreenPlacement::constrained(saved.value_or(frame()), screens()));
}

// AppKit may move a window while it shows it, too.
template <typename Change>
void MacPanelWindow::change(const Change& make) {
  const bool before = std::exchange(changing_, true);
  make();
  changing_ = before;
}

void MacPanelWindow::frameChanged() {
  if (changing_) return;
  ScreenFrame saved = frame();
  saved.x += shift_;
  saved.width -= widening_;
  const Screen on = screen().value_or(Screen{});
  MacDefaults().setString(frameKey_, ScreenPlacement::savedFrameText(saved, on.frame));
}

void MacPanelWindow::setWidening(double width, double shift) {
  widening_ = width;
  shift_ = shift;
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
  panel_.initialFirstResponder = page;  // keys are the page's as soon as the panel has them
}

ScreenFrame MacPanelWindow::frame() const {
  return fromRect(panel_.frame);
}

void MacPanelWindow::setFrame(const ScreenFrame& frame) {
  change([&] { [panel_ setFrame:toRect(frame) display:YES]; });
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
  change([&] { [panel_ orderFront:nil]; });
}

void MacPanelWindow::makeKeyAndOrderFront() {
  change([&] { [panel_ makeKeyAndOrderFront:nil]; });
}

void MacPanelWindow::resignKey() {
  [panel_ resignKeyWindow];
  change([&] { [panel_ orderFrontRegardless]; });
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
