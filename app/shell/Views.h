// The page's views that a hot key, the command line and a second start can bring up.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace quorin {

struct SummonedView {
  std::string_view name;     // as the page, the command line and the log have it
  std::string_view content;  // as texts for the user call what it shows
  std::uint32_t hotKey;      // the number of its hot key
};

namespace views {

inline constexpr SummonedView tree{"tree", "the formula", 1};
inline constexpr SummonedView map{"map", "the map", 4};
inline constexpr SummonedView dependents{"deps", "the dependents", 5};
inline constexpr std::array all{tree, map, dependents};

// True if one of them has this name.
inline bool has(std::string_view name) {
  return std::any_of(all.begin(), all.end(),
                     [name](const SummonedView& view) { return view.name == name; });
}

}  // namespace views

}  // namespace quorin
