// How the fakes tell of what happens.
#pragma once

#import <Foundation/Foundation.h>

@interface NSNotification (QXMaking)
+ (NSNotification*)notificationWithName:(NSNotificationName)name
                                 object:(id)object
                               userInfo:(NSDictionary*)info;
@end

@interface NSNotificationCenter (QXPosting)
- (void)post:(NSNotification*)notification;
@end

namespace quorin {

void post(NSNotificationCenter* center, NSNotificationName name, NSDictionary* info);
NSNotification* notification(NSNotificationName name, id object);

}  // namespace quorin
