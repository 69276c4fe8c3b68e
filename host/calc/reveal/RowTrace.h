// RowTrace: what a row or column is told by after its workbook was closed and opened again, when
// nothing of the office remembers it any more: digests of what it holds and of what the rows
// around it hold. Pure; for any thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorin::host::calc {

// The digest of what a row holds, from its first cells that hold something. Blank cells between
// them do not count.
using RowDigest = std::uint64_t;
constexpr RowDigest blankRow = 0;
RowDigest digestOf(const std::vector<std::string>& cells);

// The digests of a sheet's rows by their number; asked for numbers from 1 alone.
using RowDigests = std::function<RowDigest(int number)>;

struct RowTrace {
  static constexpr int reach = 2;  // rows on each side

  std::array<RowDigest, 2 * reach + 1> around{};  // the row's own in the middle
  int last = 0;  // the last row of the sheet that holds anything, or the first

  bool operator==(const RowTrace&) const = default;
};

RowTrace traceOf(int number, int last, const RowDigests& digests);

// The number that the row has now, which had `number` when it left the trace. Nothing when it
// cannot be told: it is gone, or others look like it and the sheet is longer or shorter now. `last`
// is that of the sheet now.
std::optional<int> findRow(const RowTrace& trace, int number, int last, const RowDigests& digests);

}  // namespace quorin::host::calc
