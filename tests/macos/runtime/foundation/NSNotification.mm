// Notifications and the main operation queue. A centre keeps an observer that it made for a block
// until it is removed.
#import <Foundation/Foundation.h>
#include <algorithm>
#include <string>
#include <vector>

#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Notification.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

using namespace quorin;

@implementation NSNotification

+ (NSNotification*)notificationWithName:(NSNotificationName)name
                                 object:(id)object
                               userInfo:(NSDictionary*)info {
  NSNotification* made = [[self alloc] init];
  made->_name = name;
  made->_object = object;
  made->_userInfo = info;
  return made;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@interface QXFakeObservation : NSObject {
 @public
  NSString* _name;
  NSOperationQueue* _queue;
  void (^_block)(NSNotification*);
}
@end

@implementation QXFakeObservation
@end

@implementation NSOperationQueue

+ (NSOperationQueue*)mainQueue {
  static NSOperationQueue* one = [] {
    NSOperationQueue* made = [[NSOperationQueue alloc] init];
    objc::exemptFromCensus((__bridge objc::Object*)made);
    return made;
  }();
  return one;
}

@end

@implementation NSNotificationCenter {
  std::vector<QXFakeObservation*> _observations;
}

- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
  QXFakeObservation* made = [[QXFakeObservation alloc] init];
  made->_name = name;
  made->_queue = queue;
  made->_block = block;
  _observations.push_back(made);
  return made;
}
- (void)removeObserver:(id)observer {
  std::erase_if(_observations, [&](QXFakeObservation* each) { return each == observer; });
}
// "The notification center waits until the block is done"; on the main thread that is at once.
- (void)post:(NSNotification*)notification {
  const auto all = _observations;
  for (QXFakeObservation* each : all) {
    if (each->_name && ![each->_name isEqualToString:notification.name]) continue;
    if (each->_queue && !isMainThread()) {
      Loop::main()->performOnMainQueue([=] { each->_block(notification); });
    } else {
      each->_block(notification);
    }
  }
}

@end

namespace quorin {

void post(NSNotificationCenter* center, NSNotificationName name, NSDictionary* info) {
  [center post:[NSNotification notificationWithName:name object:nil userInfo:info]];
}

NSNotification* notification(NSNotificationName name, id object) {
  return [NSNotification notificationWithName:name object:object userInfo:nil];
}

}  // namespace quorin
