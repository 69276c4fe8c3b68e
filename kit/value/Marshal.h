// Marshal: the conversions of JSONValue to and from Apple-event descriptors, platform object trees
// and JSON text. Pure functions for any thread; none of them fails. What cannot be converted
// becomes null, a marker object or the text "null", as each function says.
#pragma once

#include <string>

#include "kit/value/AnyValue.h"
#include "kit/value/AppleEventDescriptor.h"
#include "kit/value/JSONValue.h"

namespace quorin::Marshal {

// The one key of the object that stands for Apple-event data without a JSON counterpart; its value
// is the four-character type code as text.
inline constexpr const char* unmarshalledKey = "__unmarshalled";

// Integral numbers of the signed 32-bit range travel as 'long', other numbers as 'doub', null as
// the null descriptor. An object is a record whose one field 'usrf' lists key, value, key, value
// ... with the keys ascending: a record with user-defined labels. Containers below
// JSONValue::maximumDepth become null.
AppleEventDescriptor toDescriptor(const JSONValue& value);

// Text is composed (NFC). Every 'type' descriptor is null: missing value arrives as one. Types
// without a counterpart, text that is not valid UTF-8 and containers below JSONValue::maximumDepth
// become marker objects.
JSONValue fromDescriptor(const AppleEventDescriptor& descriptor);

// The four bytes of a code, most significant first, read as Mac OS Roman.
std::string fourCC(FourCharCode code);

// A platform's object tree as a value. Kind `other` and containers below JSONValue::maximumDepth
// become null.
JSONValue fromAny(const AnyValue& any);

// The value as a JSON writer can take it: numbers that are not finite are null.
JSONValue jsonObject(const JSONValue& value);

// Compact JSON text with ascending keys and escaped slashes. Integral numbers have no fraction,
// negative zero is 0, numbers that are not finite are null. Never empty: a value holding text that
// is not valid UTF-8 gives "null". Works at any depth.
std::string encode(const JSONValue& value);

// True if a marker object is anywhere inside the value. Works at any depth.
bool containsUnmarshalled(const JSONValue& value);

}  // namespace quorin::Marshal
