#import "app/macos/MacUpdater.h"

#import "app/macos/Text.h"

// What is used of Sparkle, which is no part of the system's own headers.
@interface SPUStandardUpdaterController : NSObject
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(nullable id)updaterDelegate
                     userDriverDelegate:(nullable id)userDriverDelegate;
- (void)checkForUpdates:(nullable id)sender;
@end

namespace quorin {
namespace {

bool hasText(NSString* key) {
  id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
  return [value isKindOfClass:NSString.class] && static_cast<NSString*>(value).length > 0;
}

// The class by its name: named directly, the program would not start without the framework.
Class _Nullable controllerClass() {
  NSURL* frameworks = NSBundle.mainBundle.privateFrameworksURL;
  NSURL* place = [frameworks URLByAppendingPathComponent:@"Sparkle.framework"];
  if (!place) return nil;
  NSBundle* framework = [NSBundle bundleWithURL:place];
  return [framework load] ? NSClassFromString(@"SPUStandardUpdaterController") : nil;
}

}  // namespace

void MacUpdater::start() const {
  if (started_) return;
  started_ = true;
  if (!hasText(@"SUFeedURL") || !hasText(@"SUPublicEDKey")) {
    reason_ = "no feed in this build";
    return;
  }
  Class made = controllerClass();
  if (!made) {
    reason_ = "the updater is missing";
    return;
  }
  SPUStandardUpdaterController* blank = [made alloc];
  controller_ = [blank initWithStartingUpdater:YES updaterDelegate:nil userDriverDelegate:nil];
}

std::optional<std::string> MacUpdater::unavailable() const {
  start();
  return reason_;
}

void MacUpdater::checkForUpdates() {
  start();
  [controller_ checkForUpdates:nil];
}

}  // namespace quorin
