// CallWork: what one call of an Excel function has Calc do in one go (see OfficeWork). Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/calc/ArrayWork.h"
#include "host/calc/CalcExpression.h"
#include "host/calc/CallReach.h"

namespace quorin::host::calc {

struct WorkingCall {
  std::string_view function;
  std::span<const ArrayShape> shapes;  // of the arguments, of which there is at least one
  std::span<const CallArgument> arguments;
  std::span<const RangeRef> reached;  // all cells, of which the arguments have theirs
};

// Adds what the call does beside what is counted in `made`, and what it makes to that, where it is
// not known yet.
void addCall(OfficeWork& work, const WorkingCall& call, ArrayCall& made);

// Some functions count up to a number that they are given. Gives the arguments of such a call so
// that Calc counts no further than does not hold it up: an argument that comes to more is #N/A
// there, and counts as work where it is known. Nothing for other functions, and for numbers that
// stand there. `shape` is what comes of the call.
std::optional<std::string> countedCall(OfficeWork& work, const WorkingCall& call,
                                       const ArrayShape& shape, const ExpressionContext& context);

}  // namespace quorin::host::calc
