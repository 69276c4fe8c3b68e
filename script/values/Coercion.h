// Turning a value of one class into another, as `as` and the operators do. Numbers and text convert
// in one way everywhere: a point for the decimals, whatever the user's language. Throws Failure
// -1700 "Can't make X into type T." where there is no way.
#pragma once

#include <string>

#include "script/values/TextRules.h"
#include "script/values/Value.h"

namespace quorin::script {

Value coerce(const Value& value, FourCharCode type, const TextRules& rules);

std::string toText(const Value& value, const TextRules& rules);
Value toNumber(const Value& value);  // of a number or a text that spells one
double toReal(const Value& value);
std::int32_t toInteger(const Value& value);  // rounds, halves to even
bool toBoolean(const Value& value);          // of booleans only, as conditions are

}  // namespace quorin::script
