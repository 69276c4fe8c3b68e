// ShapeError: a handler's answer does not have the shape that its decoder expects. The message is
// the one the page is told.
#pragma once

#include <stdexcept>
#include <string>

namespace quorin::BridgeShapes {

class ShapeError : public std::runtime_error {
 public:
  explicit ShapeError(const std::string& message) : std::runtime_error(message) {}
  std::string message() const { return what(); }
};

}  // namespace quorin::BridgeShapes
