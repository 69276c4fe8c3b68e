#include "kit/bridge/Arguments.h"

#include <algorithm>

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

}  // namespace quorin
