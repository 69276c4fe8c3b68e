#include "kit/bridge/Arguments.h"

#include <algorithm>
#include <cmath>

namespace quorin {

bool isText(const JSONValue::Array& args, std::size_t position) {
  return position < args.size() && args[position].string();
}

bool isTextList(const JSONValue::Array& args, std::size_t position) {
  if (position >= args.size()) return false;
  const JSONValue::Array* const list = args[position].array();
  return list && std::all_of(list->begin(), list->end(),
                             [](const JSONValue& item) { return item.string() != nullptr; });
}

std::vector<std::string> texts(const JSONValue& list) {
  std::vector<std::string> texts;
  if (const JSONValue::Array* const items = list.array())
    for (const JSONValue& item : *items)
      if (item.string()) texts.push_back(*item.string());
  return texts;
}

std::vector<std::int64_t> integers(const JSONValue::Array& list) {
  // Both are doubles exactly: -2^63 is a 64-bit integer, 2^63 is the first number that is not.
  constexpr double least = -9223372036854775808.0;
  constexpr double beyond = 9223372036854775808.0;
  std::vector<std::int64_t> integers;
  for (const JSONValue& item : list) {
    const double* const number = item.number();
    if (number && *number >= least && *number < beyond && std::trunc(*number) == *number)
      integers.push_back(static_cast<std::int64_t>(*number));
  }
  return integers;
}

}  // namespace quorin
