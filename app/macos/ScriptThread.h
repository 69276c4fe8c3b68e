// QXScriptThread: the thread "qx.excel" with its run loop, on which the script library is compiled
// once and every handler call is run. NSAppleScript must stay on the thread that compiled it. Any
// thread may call; a call waits for its answer, one call at a time.
#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface QXScriptThread : NSObject

// The error information, or nothing when the source compiled.
- (nullable NSDictionary<NSString*, id>*)compileSource:(NSString*)source;

// The reply, if the handler gave one; the error information, if it failed.
- (nullable NSAppleEventDescriptor*)performEvent:(NSAppleEventDescriptor*)event
                                       errorInfo:
                                           (NSDictionary<NSString*, id>* _Nullable* _Nonnull)info;

// Ends the thread after what it is doing.
- (void)stop;

@end

NS_ASSUME_NONNULL_END
