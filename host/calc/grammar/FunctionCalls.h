// FunctionCalls: calls of an Excel expression that Calc would answer otherwise, written anew in
// Calc's grammar. Pure functions over text and what the expression's context tells.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/calc/grammar/CallReach.h"

namespace quorin::host::calc {

// The argument of a call that has one alone, Excel text as it stands. The position is the opening
// bracket's, and moves behind the closing one, or stays when there are more arguments.
std::optional<std::string_view> readOnlyArgument(std::string_view text, std::size_t& position);

struct FunctionCall {
  std::string name;                          // in capitals
  std::string arguments;                     // in Calc's grammar
  std::span<const RangeRef> cells;           // that the arguments reach
  std::span<const CallArgument> parts = {};  // the arguments, one by one; at least one
};

// What stands for the call; nothing for it to stay as it is. Sets what the answer depends on.
std::optional<std::string> writtenAnew(const FunctionCall& call, const ExpressionContext& context,
                                       Reach& reach);

// What stands for an argument of INDIRECT, in Calc's grammar, so that it names no file and no
// server, whatever text it comes to; nothing for one that names none as it stands.
std::optional<std::string> keptInside(const std::string& argument);

// True if the function gives a truth value or an error, and nothing else.
bool givesTruth(std::string_view function);

// True if a call gives one value. `ofSeveral`: some of its arguments may be several values.
bool givesOne(std::string_view function, bool ofSeveral);

}  // namespace quorin::host::calc
