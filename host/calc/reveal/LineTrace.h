// LineTrace: what a row or column is told by after its workbook was closed and opened again, when
// nothing of the office remembers it any more: digests of what it holds and of what the lines
// around it hold. Pure; for any thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorin::host::calc {

// The digest of what a line holds, from its first cells that hold something. Blank cells between
// them do not count.
using LineDigest = std::uint64_t;
constexpr LineDigest blankLine = 0;
LineDigest digestOf(const std::vector<std::string>& cells);

// The digests of a sheet's lines by their number; asked for numbers from 1 alone.
using LineDigests = std::function<LineDigest(int number)>;

struct LineTrace {
  static constexpr int reach = 2;  // lines on each side

  std::array<LineDigest, 2 * reach + 1> around{};  // the line's own in the middle
  int last = 0;  // the last line of the sheet that holds anything, or the first

  bool operator==(const LineTrace&) const = default;
};

LineTrace traceOf(int number, int last, const LineDigests& digests);

// The number that the line has now, which had `number` when it left the trace. Nothing when it
// cannot be told: it is gone, or others look like it and the sheet is longer or shorter now. `last`
// is that of the sheet now.
std::optional<int> findLine(const LineTrace& trace, int number, int last,
                            const LineDigests& digests);

}  // namespace quorin::host::calc
