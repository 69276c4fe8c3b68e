// Runs of rows or columns as arguments of a handler. Pure, any thread.
#pragma once

#include <vector>

#include "kit/shapes/HiddenRuns.h"
#include "kit/value/JSONValue.h"

namespace quorin {

// Each run as an array of its two ends.
inline JSONValue runArgs(const std::vector<BridgeShapes::Run>& runs) {
  JSONValue::Array list;
  for (const BridgeShapes::Run& run : runs)
    list.emplace_back(JSONValue::Array{static_cast<double>(run[0]), static_cast<double>(run[1])});
  return list;
}

}  // namespace quorin
