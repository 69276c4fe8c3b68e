#include "kit/shapes/HiddenRuns.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "kit/shapes/Rect.h"

namespace quorin::BridgeShapes {

namespace {

template <typename Condition>
std::vector<Run> those(const std::vector<Run>& runs, Condition condition) {
  std::vector<Run> chosen;
  std::copy_if(runs.begin(), runs.end(), std::back_inserter(chosen), condition);
  return chosen;
}

std::vector<Run> without(const std::vector<Run>& runs, const std::vector<Run>& gone) {
  return those(runs, [&gone](const Run& run) {
    return std::find(gone.begin(), gone.end(), run) == gone.end();
  });
}

std::vector<Run> holding(std::int64_t index, const std::vector<Run>& runs) {
  return those(runs, [index](const Run& run) { return run[0] <= index && index <= run[1]; });
}

std::vector<Run> overlapping(const std::vector<Run>& runs, const std::vector<Run>& others) {
  return those(runs, [&others](const Run& run) {
    return std::any_of(others.begin(), others.end(), [&run](const Run& other) {
      return run[0] <= other[1] && other[0] <= run[1];
    });
  });
}

}  // namespace

std::vector<Run> gaps(std::int64_t first, std::int64_t last, const std::vector<Run>& covered) {
  std::vector<Run> found;
  std::int64_t next = first;
  for (const Run& run : mergeRuns(those(covered, [](const Run& r) { return r[0] <= r[1]; }))) {
    if (run[0] > last) break;
    if (run[1] < next) continue;
    if (run[0] > next) found.push_back({next, run[0] - 1});
    if (run[1] >= last) return found;
    next = run[1] + 1;
  }
  if (next <= last) found.push_back({next, last});
  return found;
}

std::int64_t count(const std::vector<Run>& runs) {
  std::int64_t total = 0;
  for (const Run& run : runs) total += run[1] - run[0] + 1;
  return total;
}

HiddenRuns subtract(const HiddenRuns& a, const HiddenRuns& b) {
  return {without(a.rows, b.rows), without(a.cols, b.cols)};
}

HiddenRuns runsContaining(std::int64_t row, std::int64_t col, const HiddenRuns& runs) {
  return {holding(row, runs.rows), holding(col, runs.cols)};
}

HiddenRuns runsOverlapping(const HiddenRuns& runs, const HiddenRuns& others) {
  return {overlapping(runs.rows, others.rows), overlapping(runs.cols, others.cols)};
}

std::string describe(const HiddenRuns& runs) {
  std::string text;
  const auto add = [&text](const std::string& what, const std::string& first,
                           const std::string& last) {
    if (!text.empty()) text += ", ";
    text += first == last ? what + " " + first : what + "s " + first + "\u2013" + last;
  };
  for (const Run& run : runs.rows) add("row", std::to_string(run[0]), std::to_string(run[1]));
  for (const Run& run : runs.cols) add("column", columnLetters(run[0]), columnLetters(run[1]));
  return text;
}

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
