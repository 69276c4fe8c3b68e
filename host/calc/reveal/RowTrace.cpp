#include "host/calc/reveal/RowTrace.h"

#include <algorithm>

namespace quorin::host::calc {
namespace {

constexpr int own = RowTrace::reach;
constexpr std::size_t toldBy = 8;        // cells of a row
constexpr int farthest = 500;            // rows that it may have moved
constexpr RowDigest beforeTheFirst = 1;  // stands for rows that a sheet does not have
constexpr RowDigest least = 2;

using Around = decltype(RowTrace::around);

Around aroundOf(int number, const RowDigests& digests) {
  Around around{};
  for (int i = 0; i < static_cast<int>(around.size()); ++i) {
    const int row = number - own + i;
    around[static_cast<std::size_t>(i)] = row < 1 ? beforeTheFirst : digests(row);
  }
  return around;
}

bool sameBefore(const Around& one, const Around& other) {
  return std::equal(one.begin(), one.begin() + own, other.begin());
}
bool sameAfter(const Around& one, const Around& other) {
  return std::equal(one.begin() + own + 1, one.end(), other.begin() + own + 1);
}

// The row itself, and what is on one side of it at least.
bool isLike(const Around& one, const Around& other) {
  return one[own] == other[own] && one[own] != blankRow &&
         (sameBefore(one, other) || sameAfter(one, other));
}

}  // namespace

// FNV-1a, with an end to each cell.
RowDigest digestOf(const std::vector<std::string>& cells) {
  RowDigest digest = 14695981039346656037ULL;
  const auto add = [&digest](unsigned char byte) { digest = (digest ^ byte) * 1099511628211ULL; };
  std::size_t filled = 0;
  for (const std::string& cell : cells) {
    if (cell.empty()) continue;
    if (++filled > toldBy) break;
    for (const char byte : cell) add(static_cast<unsigned char>(byte));
    add(0);
  }
  return filled == 0 ? blankRow : std::max(digest, least);
}

RowTrace traceOf(int number, int last, const RowDigests& digests) {
  return {aroundOf(number, digests), last};
}

std::optional<int> findRow(const RowTrace& trace, int number, int last, const RowDigests& digests) {
  const Around here = aroundOf(number, digests);
  const bool asLong = last == trace.last;
  if (asLong && here == trace.around) return number;
  if (std::count(trace.around.begin(), trace.around.end(), blankRow) ==
      static_cast<std::ptrdiff_t>(trace.around.size()))
    return std::nullopt;
  std::vector<int> same, alike;
  const int end = std::min(number + farthest, last + own);
  for (int row = std::max(1, number - farthest); row <= end; ++row) {
    const Around there = aroundOf(row, digests);
    if (there == trace.around) same.push_back(row);
    if (isLike(there, trace.around)) alike.push_back(row);
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
