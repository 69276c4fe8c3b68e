// The login item of the application: not found before the first registration.
#import <ServiceManagement/ServiceManagement.h>

#include "tests/macos/runtime/appkit/LoginItems.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

NSString* const SMAppServiceErrorDomain = @"SMAppServiceErrorDomain";

@implementation SMAppService

+ (SMAppService*)mainAppService {
  static SMAppService* one = [] {
    SMAppService* made = [[SMAppService alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  return one;
}
- (SMAppServiceStatus)status {
  return static_cast<SMAppServiceStatus>(loginItems().status);
}
- (BOOL)become:(SMAppServiceStatus)status error:(NSError**)error {
  if (loginItems().refusesWithoutAWord) return NO;
  if (loginItems().refusal.empty()) {
    loginItems().status = static_cast<int>(status);
    return YES;
  }
  if (error)
    *error = [NSError errorWithDomain:SMAppServiceErrorDomain
                                 code:kSMErrorLaunchDeniedByUser
                             userInfo:@{NSLocalizedDescriptionKey : made(loginItems().refusal)}];
  return NO;
}
- (BOOL)registerAndReturnError:(NSError**)error {
  return [self become:SMAppServiceStatusEnabled error:error];
}
- (BOOL)unregisterAndReturnError:(NSError**)error {
  return [self become:SMAppServiceStatusNotRegistered error:error];
}

@end

namespace quorin {

LoginItems& loginItems() {
  static auto& one = *new LoginItems;
  return one;
}

}  // namespace quorin
