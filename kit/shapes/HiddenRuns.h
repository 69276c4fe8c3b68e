// BridgeShapes for runs of hidden rows and columns. Pure functions for any thread. Indices are
// Excel's, from 1 on; runs include both ends.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quorin::BridgeShapes {

using Run = std::array<std::int64_t, 2>;  // first and last

struct HiddenRuns {
  std::vector<Run> rows;
  std::vector<Run> cols;

  bool isEmpty() const { return rows.empty() && cols.empty(); }
  bool operator==(const HiddenRuns&) const = default;
};

// The parts of first … last that no covered run holds, ascending.
std::vector<Run> gaps(std::int64_t first, std::int64_t last, const std::vector<Run>& covered);

// How many rows or columns the runs hold.
std::int64_t count(const std::vector<Run>& runs);

// The runs of `a` without those that `b` holds too, as whole runs: one that only overlaps stays.
HiddenRuns subtract(const HiddenRuns& a, const HiddenRuns& b);

// The row runs that hold the row and the column runs that hold the column.
HiddenRuns runsContaining(std::int64_t row, std::int64_t col, const HiddenRuns& runs);

// The runs that have a row or a column in common with `others`.
HiddenRuns runsOverlapping(const HiddenRuns& runs, const HiddenRuns& others);

// "rows 12–14, row 20, column C".
std::string describe(const HiddenRuns& runs);

// The runs in ascending order, those that overlap or touch joined.
std::vector<Run> mergeRuns(std::vector<Run> runs);

}  // namespace quorin::BridgeShapes
