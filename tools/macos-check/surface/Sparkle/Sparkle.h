#pragma once
#include "../AppKit/AppKit.h"
NS_ASSUME_NONNULL_BEGIN
@class SPUUpdater, SPUStandardUserDriver;
@protocol SPUUpdaterDelegate <NSObject>
@optional
- (nullable NSString*)feedURLStringForUpdater:(SPUUpdater*)updater;
@end
@protocol SPUStandardUserDriverDelegate <NSObject>
@end
@interface SPUUpdater : NSObject
- (BOOL)startUpdater:(NSError* _Nullable __autoreleasing* _Nullable)error;
- (void)checkForUpdates;
- (void)checkForUpdatesInBackground;
@property(nonatomic, readonly) BOOL canCheckForUpdates;
@property(nonatomic, readonly) BOOL sessionInProgress;
@property(nonatomic) BOOL automaticallyChecksForUpdates;
@property(nonatomic) BOOL automaticallyDownloadsUpdates;
@property(nonatomic) NSTimeInterval updateCheckInterval;
@property(nonatomic, readonly, nullable) NSURL* feedURL;
@end
@interface SPUStandardUpdaterController : NSObject
- (instancetype)init NS_UNAVAILABLE;
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(nullable id<SPUUpdaterDelegate>)updaterDelegate
                     userDriverDelegate:
                         (nullable id<SPUStandardUserDriverDelegate>)userDriverDelegate;
- (void)startUpdater;
- (void)checkForUpdates:(nullable id)sender;
@property(nonatomic, readonly) SPUUpdater* updater;
@end
NS_ASSUME_NONNULL_END
