#pragma once
#include "../Foundation/Foundation.h"
NS_ASSUME_NONNULL_BEGIN
@class OSALanguage, OSALanguageInstance;
typedef NS_OPTIONS(NSUInteger, OSAStorageOptions) { OSANull = 0 };
@interface OSALanguage : NSObject
+ (nullable OSALanguage*)languageForName:(NSString*)name;
+ (nullable OSALanguage*)defaultLanguage;
@property(readonly, getter=isThreadSafe) BOOL threadSafe;
@property(readonly, strong) OSALanguageInstance* sharedLanguageInstance;
@end
@interface OSALanguageInstance : NSObject
+ (instancetype)languageInstanceWithLanguage:(OSALanguage*)language;
- (instancetype)initWithLanguage:(OSALanguage*)language;
@end
@interface OSAScript : NSObject
- (instancetype)initWithSource:(NSString*)source;
- (instancetype)initWithSource:(NSString*)source
                       fromURL:(nullable NSURL*)url
              languageInstance:(nullable OSALanguageInstance*)instance
           usingStorageOptions:(OSAStorageOptions)storageOptions;
- (BOOL)compileAndReturnError:(NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
- (nullable NSAppleEventDescriptor*)
    executeAppleEvent:(NSAppleEventDescriptor*)event
                error:(NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
- (nullable NSAppleEventDescriptor*)
    executeHandlerWithName:(NSString*)name
                 arguments:(NSArray*)arguments
                     error:(NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
@property(readonly, getter=isCompiled) BOOL compiled;
@end
NS_ASSUME_NONNULL_END
