// CallWork: what one call of an Excel function has Calc do in one go (see OfficeWork). Pure.
#pragma once

#include <span>
#include <string_view>

#include "host/calc/grammar/ArrayWork.h"
#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/grammar/CallReach.h"

namespace quorin::host::calc {

struct WorkingCall {
  std::string_view function;
  std::span<const ArrayShape> shapes;  // of the arguments, of which there is at least one
  std::span<const CallArgument> arguments;
  std::span<const RangeRef> reached;  // all cells, of which the arguments have theirs
  const ExpressionContext& context;
};

// Adds what the call does beside what is counted in `made`, and what it makes to that, where it is
// not known yet.
void addCall(OfficeWork& work, const WorkingCall& call, ArrayCall& made);

}  // namespace quorin::host::calc
