// BoundedCall: calls that go on up to a number or a date that they are given, as COMBIN and
// NETWORKDAYS do, written so that Calc goes no further than does not hold it up. Pure.
#pragma once

#include <optional>
#include <string>

#include "host/calc/grammar/CallWork.h"

namespace quorin::host::calc {

// The arguments of such a call, in Calc's grammar, in which one that comes to too much is an error:
// #N/A, for a date #NUM!. What is known beforehand counts as work. Nothing for other functions, and
// where all arguments may stand as they are. `shape` is what comes of the call.
std::optional<std::string> boundedCall(OfficeWork& work, const WorkingCall& call,
                                       const ArrayShape& shape);

}  // namespace quorin::host::calc
