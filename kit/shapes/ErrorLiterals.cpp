#include "kit/shapes/ErrorLiterals.h"

namespace quorin::BridgeShapes {

std::string_view errorLiteral(long long errorType) {
  constexpr long long numbered = 8;
  if (errorType < 1 || errorType > numbered) return "#UNKNOWN!";
  return errorLiterals[static_cast<std::size_t>(errorType - 1)];
}

}  // namespace quorin::BridgeShapes
