#include "tests/macos/runtime/foundation/Sparkle.h"

#import <Foundation/Foundation.h>

@interface SPUStandardUpdaterController : NSObject
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(nullable id)updaterDelegate
                     userDriverDelegate:(nullable id)userDriverDelegate;
- (void)checkForUpdates:(nullable id)sender;
@end

@implementation SPUStandardUpdaterController

- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(nullable id)updaterDelegate
                     userDriverDelegate:(nullable id)userDriverDelegate {
  if (startUpdater) ++quorin::updates().started;
  ++quorin::updates().alive;
  return self;
}
- (void)dealloc {
  --quorin::updates().alive;
}
- (void)checkForUpdates:(nullable id)sender {
  ++quorin::updates().asked;
}

@end

namespace quorin {

Updates& updates() {
  static auto& one = *new Updates;
  return one;
}

}  // namespace quorin
