#pragma once
#include "../Foundation/Foundation.h"
NS_ASSUME_NONNULL_BEGIN
typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
  SMAppServiceStatusNotRegistered = 0,
  SMAppServiceStatusEnabled = 1,
  SMAppServiceStatusRequiresApproval = 2,
  SMAppServiceStatusNotFound = 3
};
enum {
  kSMErrorInternalFailure = 2,
  kSMErrorInvalidSignature = 3,
  kSMErrorAuthorizationFailure = 4,
  kSMErrorToolNotValid = 5,
  kSMErrorJobNotFound = 6,
  kSMErrorServiceUnavailable = 7,
  kSMErrorJobPlistNotFound = 8,
  kSMErrorJobMustBeEnabled = 9,
  kSMErrorInvalidPlist = 10,
  kSMErrorLaunchDeniedByUser = 11,
  kSMErrorAlreadyRegistered = 12
};  // SMErrors
@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError* _Nullable* _Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError* _Nullable* _Nullable)error;
- (void)unregisterWithCompletionHandler:(void (^)(NSError* _Nullable))handler;
+ (void)openSystemSettingsLoginItems;
+ (SMAppServiceStatus)statusForLegacyURL:(NSURL*)url;
@end
extern "C" {
extern NSString* const SMAppServiceErrorDomain;
}
NS_ASSUME_NONNULL_END
