// Between Foundation's descriptors and the portable ones.
#pragma once

#import <Foundation/Foundation.h>

#include "kit/value/AppleEvent.h"

namespace quorin {

AppleEventDescriptor plain(NSAppleEventDescriptor* descriptor);
NSAppleEventDescriptor* wrapped(const AppleEventDescriptor& value);
AppleEvent plainEvent(NSAppleEventDescriptor* event);

}  // namespace quorin
