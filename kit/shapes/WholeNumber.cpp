#include "kit/shapes/WholeNumber.h"

#include <cmath>

namespace quorin::BridgeShapes {

std::optional<std::int64_t> wholeNumber(const JSONValue& value) {
  // Both are doubles exactly: -2^63 is a 64-bit integer, 2^63 is the first number that is not.
  constexpr double least = -9223372036854775808.0;
  constexpr double beyond = 9223372036854775808.0;
  const double* const number = value.number();
  if (!number || !(*number >= least && *number < beyond) || std::trunc(*number) != *number)
    return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

}  // namespace quorin::BridgeShapes
