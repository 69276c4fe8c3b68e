// The message of the ShapeError that a decoder throws.
#pragma once

#include <string>

#include "kit/shapes/ShapeError.h"

namespace quorin {

template <typename Action>
std::string shapeMessageOf(Action action) {
  try {
    action();
  } catch (const BridgeShapes::ShapeError& error) {
    return error.message();
  }
  return "(no error)";
}

}  // namespace quorin
