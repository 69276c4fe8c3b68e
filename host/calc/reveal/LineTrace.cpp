#include "host/calc/reveal/LineTrace.h"

#include <algorithm>

namespace quorin::host::calc {
namespace {

constexpr int own = LineTrace::reach;
constexpr std::size_t toldBy = 8;         // cells of a line
constexpr int farthest = 500;             // lines that it may have moved
constexpr LineDigest beforeTheFirst = 1;  // stands for lines that a sheet does not have
constexpr LineDigest least = 2;

using Around = decltype(LineTrace::around);

Around aroundOf(int number, const LineDigests& digests) {
  Around around{};
  for (int i = 0; i < static_cast<int>(around.size()); ++i) {
    const int line = number - own + i;
    around[static_cast<std::size_t>(i)] = line < 1 ? beforeTheFirst : digests(line);
  }
  return around;
}

bool sameBefore(const Around& one, const Around& other) {
  return std::equal(one.begin(), one.begin() + own, other.begin());
}
bool sameAfter(const Around& one, const Around& other) {
  return std::equal(one.begin() + own + 1, one.end(), other.begin() + own + 1);
}

// The line itself, and what is on one side of it at least.
bool isLike(const Around& one, const Around& other) {
  return one[own] == other[own] && one[own] != blankLine &&
         (sameBefore(one, other) || sameAfter(one, other));
}

}  // namespace

// FNV-1a, with an end to each cell.
LineDigest digestOf(const std::vector<std::string>& cells) {
  LineDigest digest = 14695981039346656037ULL;
  const auto add = [&digest](unsigned char byte) { digest = (digest ^ byte) * 1099511628211ULL; };
  std::size_t filled = 0;
  for (const std::string& cell : cells) {
    if (cell.empty()) continue;
    if (++filled > toldBy) break;
    for (const char byte : cell) add(static_cast<unsigned char>(byte));
    add(0);
  }
  return filled == 0 ? blankLine : std::max(digest, least);
}

LineTrace traceOf(int number, int last, const LineDigests& digests) {
  return {aroundOf(number, digests), last};
}

std::optional<int> findLine(const LineTrace& trace, int number, int last,
                            const LineDigests& digests) {
  const Around here = aroundOf(number, digests);
  const bool asLong = last == trace.last;
  if (asLong && here == trace.around) return number;
  if (std::count(trace.around.begin(), trace.around.end(), blankLine) ==
      static_cast<std::ptrdiff_t>(trace.around.size()))
    return std::nullopt;
  std::vector<int> same, alike;
  const int end = std::min(number + farthest, last + own);
  for (int line = std::max(1, number - farthest); line <= end; ++line) {
    const Around there = aroundOf(line, digests);
    if (there == trace.around) same.push_back(line);
    if (isLike(there, trace.around)) alike.push_back(line);
  }
  if (same.size() == 1) return same.front();
  if (!same.empty()) return std::nullopt;
  if (alike.size() == 1) return alike.front();
  // The user may have written something else into it.
  if (alike.empty() && asLong && sameBefore(here, trace.around) && sameAfter(here, trace.around))
    return number;
  return std::nullopt;
}

}  // namespace quorin::host::calc
