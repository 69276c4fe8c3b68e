// BridgeShapes for numbers that stand for counts and indices. Pure functions for any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "kit/value/JSONValue.h"

namespace quorin::BridgeShapes {

// The value of a number that is integral and within the signed 64-bit range; none for any other.
std::optional<std::int64_t> wholeNumber(const JSONValue& value);

}  // namespace quorin::BridgeShapes
