#pragma once
#include "../CoreServices/CoreServices.h"
#include "../dispatch/dispatch.h"
NS_ASSUME_NONNULL_BEGIN
@class NSString, NSOperationQueue, NSNotification, NSURLRequest, NSURLResponse,
    NSAppleEventDescriptor, NSRunLoop, NSBundle, NSProcessInfo, NSUserDefaults, NSFileManager,
    NSNotificationCenter;
@class NSArray<ObjectType>, NSMutableDictionary<KeyType, ObjectType>,
    NSDictionary<KeyType, ObjectType>;
typedef NSString* NSNotificationName;
typedef NSString* NSRunLoopMode;
typedef NSString* NSErrorDomain;
typedef NSString* NSExceptionName;
typedef NSString* NSErrorUserInfoKey;
typedef NSString* NSFileAttributeKey;
typedef struct {
  NSInteger majorVersion, minorVersion, patchVersion;
} NSOperatingSystemVersion;
@interface NSValue : NSObject
@end
@interface NSNull : NSObject
+ (NSNull*)null;
@end
typedef NS_ENUM(NSInteger, NSComparisonResult) {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1
};
static const NSStringEncoding NSASCIIStringEncoding = 1, NSUTF8StringEncoding = 4,
                              NSUTF16LittleEndianStringEncoding = 2483028224;
typedef NS_OPTIONS(NSUInteger, NSStringCompareOptions) {
  NSCaseInsensitiveSearch = 1,
  NSLiteralSearch = 2,
  NSNumericSearch = 64,
  NSDiacriticInsensitiveSearch = 128
};
typedef NS_ENUM(NSUInteger, NSSearchPathDirectory) {
  NSApplicationDirectory = 1,
  NSLibraryDirectory = 5,
  NSDocumentDirectory = 9,
  NSDesktopDirectory = 12,
  NSCachesDirectory = 13,
  NSApplicationSupportDirectory = 14,
  NSDownloadsDirectory = 15
};
typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask) {
  NSUserDomainMask = 1,
  NSLocalDomainMask = 2
};
typedef NS_OPTIONS(NSUInteger, NSFileManagerItemReplacementOptions) {
  NSFileManagerItemReplacementUsingNewMetadataOnly = 1
};
typedef NS_OPTIONS(NSUInteger, NSDataReadingOptions) { NSDataReadingMappedIfSafe = 1 };
typedef NS_OPTIONS(NSUInteger, NSDataWritingOptions) { NSDataWritingAtomic = 1 };
typedef NS_OPTIONS(NSUInteger, NSJSONReadingOptions) {
  NSJSONReadingMutableContainers = 1,
  NSJSONReadingFragmentsAllowed = 4
};
typedef NS_OPTIONS(NSUInteger, NSJSONWritingOptions) {
  NSJSONWritingPrettyPrinted = 1,
  NSJSONWritingSortedKeys = 2,
  NSJSONWritingFragmentsAllowed = 4,
  NSJSONWritingWithoutEscapingSlashes = 8
};
typedef NS_ENUM(NSInteger, NSQualityOfService) {
  NSQualityOfServiceUserInteractive = 33,
  NSQualityOfServiceUserInitiated = 25,
  NSQualityOfServiceUtility = 17,
  NSQualityOfServiceBackground = 9,
  NSQualityOfServiceDefault = -1
};
typedef NS_OPTIONS(uint64_t, NSActivityOptions) {
  NSActivityUserInitiated = 16777215,
  NSActivityUserInitiatedAllowingIdleSystemSleep = 15728639,
  NSActivityBackground = 255,
  NSActivityLatencyCritical = 1095216660480
};
typedef NS_OPTIONS(NSUInteger, NSAppleEventSendOptions) {
  NSAppleEventSendNoReply = 1,
  NSAppleEventSendQueueReply = 2,
  NSAppleEventSendWaitForReply = 3,
  NSAppleEventSendNeverInteract = 16,
  NSAppleEventSendCanInteract = 32,
  NSAppleEventSendAlwaysInteract = 48,
  NSAppleEventSendCanSwitchLayer = 64,
  NSAppleEventSendDontExecute = 8192,
  NSAppleEventSendDefaultOptions = 35
};
@interface NSObject (SurfaceRunLoopAdditions)
- (void)performSelector:(nullable SEL)aSelector
               onThread:(NSThread*)thr
             withObject:(nullable id)arg
          waitUntilDone:(BOOL)wait;
- (void)performSelector:(nullable SEL)aSelector
               onThread:(NSThread*)thr
             withObject:(nullable id)arg
          waitUntilDone:(BOOL)wait
                  modes:(nullable NSArray<NSString*>*)array;
- (void)performSelectorOnMainThread:(nullable SEL)aSelector
                         withObject:(nullable id)arg
                      waitUntilDone:(BOOL)wait;
- (void)performSelector:(nullable SEL)aSelector
             withObject:(nullable id)anArgument
             afterDelay:(NSTimeInterval)delay;
- (void)performSelector:(SEL)aSelector
             withObject:(nullable id)anArgument
             afterDelay:(NSTimeInterval)delay
                inModes:(NSArray<NSRunLoopMode>*)modes;
+ (void)cancelPreviousPerformRequestsWithTarget:(id)aTarget;
- (void)setValue:(nullable id)value forKey:(NSString*)key;
- (nullable id)valueForKey:(nullable NSString*)key;
@end
@interface NSString : NSObject <NSCopying, NSMutableCopying>
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
+ (instancetype)stringWithFormat:(NSString*)format, ...;
- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)len
                              encoding:(NSStringEncoding)encoding;
- (nullable instancetype)initWithData:(NSData*)data encoding:(NSStringEncoding)encoding;
@property(readonly, nullable) const char* UTF8String;
@property(readonly) NSUInteger length;
- (unichar)characterAtIndex:(NSUInteger)index;
- (BOOL)isEqualToString:(NSString*)aString;
- (NSComparisonResult)compare:(NSString*)string options:(NSStringCompareOptions)mask;
- (BOOL)hasPrefix:(NSString*)str;
- (BOOL)hasSuffix:(NSString*)str;
- (NSRange)rangeOfString:(NSString*)searchString;
- (NSString*)substringFromIndex:(NSUInteger)from;
- (NSString*)substringToIndex:(NSUInteger)to;
- (NSString*)stringByAppendingString:(NSString*)aString;
- (NSString*)stringByAppendingPathComponent:(NSString*)str;
@property(copy, readonly) NSString* lastPathComponent;
@property(copy, readonly) NSString* pathExtension;
@property(copy, readonly) NSString* stringByDeletingLastPathComponent;
@property(copy, readonly) NSString* stringByStandardizingPath;
@property(copy, readonly) NSString* lowercaseString;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)enc;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding;
@property(readonly) const char* fileSystemRepresentation;
@property(copy, readonly) NSString* decomposedStringWithCanonicalMapping;
@property(copy, readonly) NSString* precomposedStringWithCanonicalMapping;
@end
@interface NSArray<__covariant ObjectType>
    : NSObject <NSCopying, NSFastEnumeration, NSMutableCopying>
@property(readonly) NSUInteger count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)idx;
+ (instancetype)array;
+ (instancetype)arrayWithObject:(ObjectType)anObject;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                           count:(NSUInteger)cnt;
@property(nullable, nonatomic, readonly) ObjectType firstObject;
@property(nullable, nonatomic, readonly) ObjectType lastObject;
- (BOOL)containsObject:(ObjectType)anObject;
@end
@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)anObject;
- (void)removeAllObjects;
- (void)insertObject:(ObjectType)anObject atIndex:(NSUInteger)index;
@end
@interface NSDictionary<__covariant KeyType, __covariant ObjectType>
    : NSObject <NSCopying, NSFastEnumeration, NSMutableCopying>
@property(readonly) NSUInteger count;
- (nullable ObjectType)objectForKey:(KeyType)aKey;
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
+ (instancetype)dictionary;
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const id<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)cnt;
@property(copy, readonly) NSArray<KeyType>* allKeys;
@end
@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
- (void)setObject:(ObjectType)anObject forKey:(id<NSCopying>)aKey;
- (void)setObject:(nullable ObjectType)obj forKeyedSubscript:(id<NSCopying>)key;
- (void)removeObjectForKey:(KeyType)aKey;
@end
@interface NSNumber : NSValue
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithUnsignedInt:(unsigned int)value;
+ (NSNumber*)numberWithInteger:(NSInteger)value;
+ (NSNumber*)numberWithUnsignedInteger:(NSUInteger)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithDouble:(double)value;
@property(readonly) BOOL boolValue;
@property(readonly) int intValue;
@property(readonly) NSInteger integerValue;
@property(readonly) long long longLongValue;
@property(readonly) double doubleValue;
@property(copy, readonly) NSString* stringValue;
@property(readonly) unsigned int unsignedIntValue;
@end
@interface NSData : NSObject <NSCopying, NSMutableCopying>
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
+ (nullable instancetype)dataWithContentsOfURL:(NSURL*)url
                                       options:(NSDataReadingOptions)readOptionsMask
                                         error:(NSError* _Nullable* _Nullable)errorPtr;
@property(readonly) const void* bytes;
@property(readonly) NSUInteger length;
- (BOOL)writeToURL:(NSURL*)url
           options:(NSDataWritingOptions)writeOptionsMask
             error:(NSError* _Nullable* _Nullable)errorPtr;
@end
@interface NSDate : NSObject <NSCopying>
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)secs;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs;
@property(class, copy, readonly) NSDate* distantFuture;
@property(class, copy, readonly) NSDate* distantPast;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@property(readonly) NSTimeInterval timeIntervalSinceNow;
@end
@interface NSError : NSObject <NSCopying>
@property(copy, readonly) NSErrorDomain domain;
@property(readonly) NSInteger code;
@property(copy, readonly) NSDictionary<NSErrorUserInfoKey, id>* userInfo;
@property(copy, readonly) NSString* localizedDescription;
@property(copy, readonly, nullable) NSString* localizedFailureReason;
+ (instancetype)errorWithDomain:(NSErrorDomain)domain
                           code:(NSInteger)code
                       userInfo:(nullable NSDictionary<NSErrorUserInfoKey, id>*)dict;
@end
@interface NSException : NSObject <NSCopying>
@property(copy, readonly) NSExceptionName name;
@property(copy, readonly, nullable) NSString* reason;
@end
@interface NSURL : NSObject <NSCopying>
+ (nullable instancetype)URLWithString:(NSString*)URLString;
+ (NSURL*)fileURLWithPath:(NSString*)path;
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDir;
@property(copy, readonly, nullable) NSString* absoluteString;
@property(copy, readonly, nullable) NSString* scheme;
@property(copy, readonly, nullable) NSString* host;
@property(copy, readonly, nullable) NSString* path;
@property(copy, readonly, nullable) NSString* query;
@property(copy, readonly, nullable) NSString* fragment;
@property(copy, readonly, nullable) NSString* lastPathComponent;
@property(readonly, getter=isFileURL) BOOL fileURL;
@property(readonly) const char* fileSystemRepresentation;
- (nullable NSURL*)URLByAppendingPathComponent:(NSString*)pathComponent;
- (nullable NSURL*)URLByAppendingPathComponent:(NSString*)pathComponent
                                   isDirectory:(BOOL)isDirectory;
@property(copy, readonly, nullable) NSURL* URLByDeletingLastPathComponent;
@property(copy, readonly, nullable) NSURL* URLByStandardizingPath;
@end
typedef NS_ENUM(NSUInteger, NSURLRequestCachePolicy) {
  NSURLRequestUseProtocolCachePolicy = 0,
  NSURLRequestReloadIgnoringLocalCacheData = 1
};
@interface NSURLRequest : NSObject <NSCopying, NSMutableCopying>
+ (instancetype)requestWithURL:(NSURL*)URL;
+ (instancetype)requestWithURL:(NSURL*)URL
                   cachePolicy:(NSURLRequestCachePolicy)cachePolicy
               timeoutInterval:(NSTimeInterval)timeoutInterval;
@property(copy, readonly, nullable) NSURL* URL;
@end
@interface NSURLResponse : NSObject <NSCopying>
- (instancetype)initWithURL:(NSURL*)URL
                   MIMEType:(nullable NSString*)MIMEType
      expectedContentLength:(NSInteger)length
           textEncodingName:(nullable NSString*)name;
@end
@interface NSHTTPURLResponse : NSURLResponse
- (nullable instancetype)initWithURL:(NSURL*)url
                          statusCode:(NSInteger)statusCode
                         HTTPVersion:(nullable NSString*)HTTPVersion
                        headerFields:(nullable NSDictionary<NSString*, NSString*>*)headerFields;
@end
@interface NSFileManager : NSObject
@property(class, strong, readonly) NSFileManager* defaultManager;
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domainMask;
- (nullable NSURL*)URLForDirectory:(NSSearchPathDirectory)directory
                          inDomain:(NSSearchPathDomainMask)domain
                 appropriateForURL:(nullable NSURL*)url
                            create:(BOOL)shouldCreate
                             error:(NSError* _Nullable* _Nullable)error;
- (BOOL)createDirectoryAtURL:(NSURL*)url
    withIntermediateDirectories:(BOOL)createIntermediates
                     attributes:(nullable NSDictionary<NSFileAttributeKey, id>*)attributes
                          error:(NSError* _Nullable* _Nullable)error;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(nullable BOOL*)isDirectory;
- (BOOL)removeItemAtURL:(NSURL*)URL error:(NSError* _Nullable* _Nullable)error;
- (BOOL)moveItemAtURL:(NSURL*)srcURL
                toURL:(NSURL*)dstURL
                error:(NSError* _Nullable* _Nullable)error;
- (BOOL)copyItemAtURL:(NSURL*)srcURL
                toURL:(NSURL*)dstURL
                error:(NSError* _Nullable* _Nullable)error;
@property(copy, readonly) NSURL* temporaryDirectory;
@property(copy, readonly) NSURL* homeDirectoryForCurrentUser;
- (BOOL)replaceItemAtURL:(NSURL*)originalItemURL
           withItemAtURL:(NSURL*)newItemURL
          backupItemName:(nullable NSString*)backupItemName
                 options:(NSFileManagerItemReplacementOptions)options
        resultingItemURL:(NSURL* _Nullable* _Nullable)resultingURL
                   error:(NSError* _Nullable* _Nullable)error;
@end
@interface NSJSONSerialization : NSObject
+ (BOOL)isValidJSONObject:(id)obj;
+ (nullable NSData*)dataWithJSONObject:(id)obj
                               options:(NSJSONWritingOptions)opt
                                 error:(NSError* _Nullable* _Nullable)error;
+ (nullable id)JSONObjectWithData:(NSData*)data
                          options:(NSJSONReadingOptions)opt
                            error:(NSError* _Nullable* _Nullable)error;
@end
@interface NSUserDefaults : NSObject
@property(class, strong, readonly) NSUserDefaults* standardUserDefaults;
- (nullable instancetype)initWithSuiteName:(nullable NSString*)suitename;
- (nullable id)objectForKey:(NSString*)defaultName;
- (void)setObject:(nullable id)value forKey:(NSString*)defaultName;
- (void)removeObjectForKey:(NSString*)defaultName;
- (nullable NSString*)stringForKey:(NSString*)defaultName;
- (nullable NSArray*)arrayForKey:(NSString*)defaultName;
- (nullable NSDictionary<NSString*, id>*)dictionaryForKey:(NSString*)defaultName;
- (nullable NSData*)dataForKey:(NSString*)defaultName;
- (BOOL)boolForKey:(NSString*)defaultName;
- (NSInteger)integerForKey:(NSString*)defaultName;
- (double)doubleForKey:(NSString*)defaultName;
- (void)setBool:(BOOL)value forKey:(NSString*)defaultName;
- (void)setInteger:(NSInteger)value forKey:(NSString*)defaultName;
- (void)setDouble:(double)value forKey:(NSString*)defaultName;
- (void)registerDefaults:(NSDictionary<NSString*, id>*)registrationDictionary;
- (BOOL)synchronize;
@end
@interface NSBundle : NSObject
@property(class, strong, readonly) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
+ (nullable instancetype)bundleWithURL:(NSURL*)url;
- (BOOL)load;
@property(readonly, getter=isLoaded) BOOL loaded;
- (BOOL)loadAndReturnError:(NSError* _Nullable* _Nullable)error;
@property(copy, readonly) NSURL* bundleURL;
@property(copy, readonly) NSString* bundlePath;
@property(copy, readonly, nullable) NSURL* resourceURL;
@property(copy, readonly, nullable) NSString* resourcePath;
@property(copy, readonly, nullable) NSURL* executableURL;
@property(copy, readonly, nullable) NSURL* privateFrameworksURL;
@property(copy, readonly, nullable) NSString* privateFrameworksPath;
@property(copy, readonly, nullable) NSString* bundleIdentifier;
@property(copy, readonly, nullable) NSDictionary<NSString*, id>* infoDictionary;
@property(readonly, nullable) Class principalClass;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
- (nullable Class)classNamed:(NSString*)className;
- (nullable NSURL*)URLForResource:(nullable NSString*)name withExtension:(nullable NSString*)ext;
- (nullable NSURL*)URLForResource:(nullable NSString*)name
                    withExtension:(nullable NSString*)ext
                     subdirectory:(nullable NSString*)subpath;
- (nullable NSString*)pathForResource:(nullable NSString*)name ofType:(nullable NSString*)ext;
- (NSString*)localizedStringForKey:(NSString*)key
                             value:(nullable NSString*)value
                             table:(nullable NSString*)tableName;
@end
@interface NSAppleScript : NSObject <NSCopying>
- (nullable instancetype)initWithSource:(NSString*)source;
- (nullable instancetype)initWithContentsOfURL:(NSURL*)url
                                         error:(NSDictionary<NSString*, id>* _Nullable* _Nullable)
                                                   errorInfo;
@property(copy, readonly, nullable) NSString* source;
@property(readonly, getter=isCompiled) BOOL compiled;
- (BOOL)compileAndReturnError:(NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
- (nullable NSAppleEventDescriptor*)executeAndReturnError:
    (NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
- (nullable NSAppleEventDescriptor*)
    executeAppleEvent:(NSAppleEventDescriptor*)event
                error:(NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
@end
@interface NSAppleEventDescriptor : NSObject <NSCopying>
+ (NSAppleEventDescriptor*)nullDescriptor;
+ (nullable NSAppleEventDescriptor*)descriptorWithDescriptorType:(DescType)descriptorType
                                                           bytes:(nullable const void*)bytes
                                                          length:(NSUInteger)byteCount;
+ (nullable NSAppleEventDescriptor*)descriptorWithDescriptorType:(DescType)descriptorType
                                                            data:(nullable NSData*)data;
+ (NSAppleEventDescriptor*)descriptorWithBoolean:(Boolean)boolean;
+ (NSAppleEventDescriptor*)descriptorWithEnumCode:(OSType)enumerator;
+ (NSAppleEventDescriptor*)descriptorWithInt32:(SInt32)signedInt;
+ (NSAppleEventDescriptor*)descriptorWithDouble:(double)doubleValue;
+ (NSAppleEventDescriptor*)descriptorWithTypeCode:(OSType)typeCode;
+ (NSAppleEventDescriptor*)descriptorWithString:(NSString*)string;
+ (NSAppleEventDescriptor*)descriptorWithDate:(NSDate*)date;
+ (NSAppleEventDescriptor*)descriptorWithFileURL:(NSURL*)fileURL;
+ (NSAppleEventDescriptor*)appleEventWithEventClass:(AEEventClass)eventClass
                                            eventID:(AEEventID)eventID
                                   targetDescriptor:
                                       (nullable NSAppleEventDescriptor*)targetDescriptor
                                           returnID:(AEReturnID)returnID
                                      transactionID:(AETransactionID)transactionID;
+ (NSAppleEventDescriptor*)listDescriptor;
+ (NSAppleEventDescriptor*)recordDescriptor;
+ (NSAppleEventDescriptor*)currentProcessDescriptor;
+ (NSAppleEventDescriptor*)descriptorWithProcessIdentifier:(pid_t)processIdentifier;
+ (NSAppleEventDescriptor*)descriptorWithBundleIdentifier:(NSString*)bundleIdentifier;
- (instancetype)initWithAEDescNoCopy:(const AEDesc*)aeDesc;
- (instancetype)initWithEventClass:(AEEventClass)eventClass
                           eventID:(AEEventID)eventID
                  targetDescriptor:(nullable NSAppleEventDescriptor*)targetDescriptor
                          returnID:(AEReturnID)returnID
                     transactionID:(AETransactionID)transactionID;
- (instancetype)initListDescriptor;
- (instancetype)initRecordDescriptor;
@property(readonly, nullable) const AEDesc* aeDesc;
@property(readonly) DescType descriptorType;
@property(copy, readonly) NSData* data;
@property(readonly) Boolean booleanValue;
@property(readonly) OSType enumCodeValue;
@property(readonly) SInt32 int32Value;
@property(readonly) double doubleValue;
@property(readonly) OSType typeCodeValue;
@property(copy, readonly, nullable) NSString* stringValue;
@property(copy, readonly, nullable) NSDate* dateValue;
@property(copy, readonly, nullable) NSURL* fileURLValue;
@property(readonly) AEEventClass eventClass;
@property(readonly) AEEventID eventID;
@property(readonly) AEReturnID returnID;
@property(readonly) AETransactionID transactionID;
- (void)setParamDescriptor:(NSAppleEventDescriptor*)descriptor forKeyword:(AEKeyword)keyword;
- (nullable NSAppleEventDescriptor*)paramDescriptorForKeyword:(AEKeyword)keyword;
- (void)removeParamDescriptorWithKeyword:(AEKeyword)keyword;
- (void)setAttributeDescriptor:(NSAppleEventDescriptor*)descriptor forKeyword:(AEKeyword)keyword;
- (nullable NSAppleEventDescriptor*)attributeDescriptorForKeyword:(AEKeyword)keyword;
- (nullable NSAppleEventDescriptor*)sendEventWithOptions:(NSAppleEventSendOptions)sendOptions
                                                 timeout:(NSTimeInterval)timeoutInSeconds
                                                   error:(NSError* _Nullable* _Nullable)error;
@property(readonly) BOOL isRecordDescriptor;
@property(readonly) NSInteger numberOfItems;
- (void)insertDescriptor:(NSAppleEventDescriptor*)descriptor atIndex:(NSInteger)index;
- (nullable NSAppleEventDescriptor*)descriptorAtIndex:(NSInteger)index;
- (void)removeDescriptorAtIndex:(NSInteger)index;
- (void)setDescriptor:(NSAppleEventDescriptor*)descriptor forKeyword:(AEKeyword)keyword;
- (nullable NSAppleEventDescriptor*)descriptorForKeyword:(AEKeyword)keyword;
- (void)removeDescriptorWithKeyword:(AEKeyword)keyword;
- (AEKeyword)keywordForDescriptorAtIndex:(NSInteger)index;
- (nullable NSAppleEventDescriptor*)coerceToDescriptorType:(DescType)descriptorType;
@end
@interface NSThread : NSObject
@property(class, strong, readonly) NSThread* currentThread;
@property(class, strong, readonly) NSThread* mainThread;
@property(class, readonly) BOOL isMainThread;
+ (void)detachNewThreadWithBlock:(void (^)(void))block;
+ (void)detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(nullable id)argument;
- (instancetype)initWithTarget:(id)target selector:(SEL)selector object:(nullable id)argument;
- (instancetype)initWithBlock:(void (^)(void))block;
- (void)start;
- (void)cancel;
- (void)main;
@property(readonly, getter=isExecuting) BOOL executing;
@property(readonly, getter=isFinished) BOOL finished;
@property(readonly, getter=isCancelled) BOOL cancelled;
@property(copy, nullable) NSString* name;
@property NSUInteger stackSize;
@property NSQualityOfService qualityOfService;
@property(strong, readonly) NSMutableDictionary* threadDictionary;
+ (void)sleepForTimeInterval:(NSTimeInterval)ti;
@end
@interface NSRunLoop : NSObject
@property(class, strong, readonly) NSRunLoop* currentRunLoop;
@property(class, strong, readonly) NSRunLoop* mainRunLoop;
@property(copy, readonly, nullable) NSRunLoopMode currentMode;
- (CFRunLoopRef)getCFRunLoop;
- (void)addPort:(NSPort*)aPort forMode:(NSRunLoopMode)mode;
- (void)removePort:(NSPort*)aPort forMode:(NSRunLoopMode)mode;
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
- (void)run;
- (void)runUntilDate:(NSDate*)limitDate;
- (BOOL)runMode:(NSRunLoopMode)mode beforeDate:(NSDate*)limitDate;
- (void)performBlock:(void (^)(void))block;
@end
@interface NSPort : NSObject <NSCopying>
+ (NSPort*)port;
- (void)invalidate;
@end
@interface NSMachPort : NSPort
@end
@interface NSTimer : NSObject
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                          repeats:(BOOL)repeats
                            block:(void (^)(NSTimer* _Nonnull))block;
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)interval
                                   repeats:(BOOL)repeats
                                     block:(void (^)(NSTimer* _Nonnull))block;
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)ti
                                    target:(id)aTarget
                                  selector:(SEL)aSelector
                                  userInfo:(nullable id)userInfo
                                   repeats:(BOOL)yesOrNo;
- (void)invalidate;
@property(readonly, getter=isValid) BOOL valid;
@property NSTimeInterval tolerance;
@property(strong, readonly, nullable) id userInfo;
@end
@interface NSNotification : NSObject <NSCopying>
@property(copy, readonly) NSNotificationName name;
@property(strong, readonly, nullable) id object;
@property(copy, readonly, nullable) NSDictionary* userInfo;
@end
@interface NSNotificationCenter : NSObject
@property(class, strong, readonly) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)aSelector
               name:(nullable NSNotificationName)aName
             object:(nullable id)anObject;
- (void)removeObserver:(id)observer;
- (void)removeObserver:(id)observer
                  name:(nullable NSNotificationName)aName
                object:(nullable id)anObject;
- (id<NSObject>)addObserverForName:(NSNotificationName _Nullable)name
                            object:(id _Nullable)obj
                             queue:(NSOperationQueue* _Nullable)queue
                        usingBlock:(void (^)(NSNotification* _Nonnull))block;
- (void)postNotificationName:(NSNotificationName)aName object:(nullable id)anObject;
@end
@interface NSOperationQueue : NSObject
@property(class, strong, readonly) NSOperationQueue* mainQueue;
- (void)addOperationWithBlock:(void (^)(void))block;
@end
@interface NSProcessInfo : NSObject
@property(class, strong, readonly) NSProcessInfo* processInfo;
@property(readonly) int processIdentifier;
@property(readonly) NSOperatingSystemVersion operatingSystemVersion;
@property(copy, readonly) NSString* operatingSystemVersionString;
- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason;
- (void)endActivity:(id<NSObject>)activity;
- (void)disableSuddenTermination;
@end
@interface NSLocale : NSObject <NSCopying>
@property(class, copy, readonly) NSLocale* currentLocale;
@property(copy, readonly) NSString* localeIdentifier;
@property(class, copy, readonly) NSArray<NSString*>* preferredLanguages;
@end
extern "C" {
extern NSRunLoopMode const NSDefaultRunLoopMode;
extern NSRunLoopMode const NSRunLoopCommonModes;
extern NSString* const NSAppleScriptErrorMessage;
extern NSString* const NSAppleScriptErrorNumber;
extern NSString* const NSAppleScriptErrorAppName;
extern NSString* const NSAppleScriptErrorBriefMessage;
extern NSString* const NSAppleScriptErrorRange;
extern NSNotificationName const NSUserDefaultsDidChangeNotification;
extern NSErrorDomain const NSCocoaErrorDomain;
extern NSErrorDomain const NSOSStatusErrorDomain;
extern NSErrorDomain const NSURLErrorDomain;
extern NSErrorUserInfoKey const NSLocalizedDescriptionKey;
}
NS_ASSUME_NONNULL_END
NS_ASSUME_NONNULL_BEGIN
@interface NSMutableString : NSString
@end
@interface NSArray <__covariant ObjectType>(SurfaceFE) <NSFastEnumeration>
@end
NS_ASSUME_NONNULL_END
NS_ASSUME_NONNULL_BEGIN
@interface NSTask : NSObject
- (instancetype)init;
@property(nullable, copy) NSURL* executableURL;
@property(nullable, copy) NSArray<NSString*>* arguments;
@property(nullable, copy) NSURL* currentDirectoryURL;
@property(nullable, retain) id standardInput;
@property(nullable, retain) id standardOutput;
@property(nullable, retain) id standardError;
- (BOOL)launchAndReturnError:(NSError* _Nullable* _Nullable)error;
- (void)waitUntilExit;
- (void)terminate;
@property(readonly, getter=isRunning) BOOL running;
@property(readonly) int terminationStatus;
@property(readonly) int processIdentifier;
@end
NS_ASSUME_NONNULL_END
