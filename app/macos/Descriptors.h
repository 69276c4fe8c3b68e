// Apple events and their values, ours to NSAppleEventDescriptor and back. Pure; any thread with an
// autorelease pool.
#pragma once

#import <Foundation/Foundation.h>

#include "kit/value/AppleEvent.h"

NS_ASSUME_NONNULL_BEGIN

namespace quorin {

// Of the types that Marshal::toDescriptor makes; any other becomes the null descriptor.
NSAppleEventDescriptor* toEventDescriptor(const AppleEventDescriptor& value);

// Numbers, booleans, texts, codes, lists and records with their values; every other type with its
// code alone. Text comes as it is: Marshal::fromDescriptor composes it.
AppleEventDescriptor fromEventDescriptor(NSAppleEventDescriptor* descriptor);

// The event, addressed to this process, in which the script runs.
NSAppleEventDescriptor* toScriptEvent(const AppleEvent& event);

}  // namespace quorin

NS_ASSUME_NONNULL_END
