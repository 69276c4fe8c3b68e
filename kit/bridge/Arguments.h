// Reading a verb's arguments. Pure functions for any thread.
#pragma once

#include <string>
#include <vector>

#include "kit/value/JSONValue.h"

namespace quorin {

// True if there is an argument at this 0-based position and it is text.
bool isText(const JSONValue::Array& args, std::size_t position);

// True if it is an array of nothing but texts, or an empty array.
bool isTextList(const JSONValue::Array& args, std::size_t position);

// The texts of an array.
std::vector<std::string> texts(const JSONValue& list);

}  // namespace quorin
