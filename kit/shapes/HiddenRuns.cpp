#include "kit/shapes/HiddenRuns.h"

#include <algorithm>
#include <limits>

namespace quorin::BridgeShapes {

std::vector<Run> mergeRuns(std::vector<Run> runs) {
  std::stable_sort(runs.begin(), runs.end(),
                   [](const Run& a, const Run& b) { return a[0] < b[0]; });
  std::vector<Run> merged;
  for (const Run& run : runs) {
    const bool touches =
        !merged.empty() && (merged.back()[1] == std::numeric_limits<std::int64_t>::max() ||
                            run[0] <= merged.back()[1] + 1);
    if (touches) {
      merged.back()[1] = std::max(merged.back()[1], run[1]);
    } else {
      merged.push_back(run);
    }
  }
  return merged;
}

}  // namespace quorin::BridgeShapes
