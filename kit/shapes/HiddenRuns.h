// BridgeShapes for runs of hidden rows and columns. Pure functions for any thread. Indices are
// Excel's, from 1 on; runs include both ends.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace quorin::BridgeShapes {

using Run = std::array<std::int64_t, 2>;  // first and last

struct HiddenRuns {
  std::vector<Run> rows;
  std::vector<Run> cols;

  bool isEmpty() const { return rows.empty() && cols.empty(); }
  bool operator==(const HiddenRuns&) const = default;
};

// The runs in ascending order, those that overlap or touch joined.
std::vector<Run> mergeRuns(std::vector<Run> runs);

}  // namespace quorin::BridgeShapes
