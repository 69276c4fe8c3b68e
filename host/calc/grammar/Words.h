// Words: tables of names. Pure.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace quorin::host::calc {

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace quorin::host::calc
