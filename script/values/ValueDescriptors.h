// Values to and from descriptors. Pure functions.
#pragma once

#include "kit/value/AppleEventDescriptor.h"
#include "script/values/Value.h"

namespace quorin::script {

// Text goes as 'utxt', integers as 'long', reals as 'doub', missing value as 'type' 'msng', records
// with term labels by code and the script's own labels in 'usrf', references to parts of lists as
// the parts. No value is the null descriptor. Throws Failure when nested too deep.
AppleEventDescriptor toDescriptor(const Value& value);
// The same of a value that is not needed any more: what nobody else holds is moved, not copied.
AppleEventDescriptor takeDescriptor(Value value);

// Every descriptor has a value; those of a type the language has no word for pass through as they
// are. Object specifiers belong to `origin`, the application that sent them. Integers beyond the
// range of AppleScript's become reals, null and missing answers the null and missing value.
Value fromDescriptor(AppleEventDescriptor descriptor, Application* origin);

}  // namespace quorin::script
