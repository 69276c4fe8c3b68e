#include "kit/bridge/Arguments.h"

#include <algorithm>

#include "kit/shapes/WholeNumber.h"

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
  std::vector<std::int64_t> integers;
  for (const JSONValue& item : list)
    if (const auto number = BridgeShapes::wholeNumber(item)) integers.push_back(*number);
  return integers;
}

}  // namespace quorin
