// FoundCells: how many cells a reference has that is only found when it is worked out, as those of
// OFFSET, INDEX and A1:INDEX(...) are. Pure functions over text and what the expression's context
// tells.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/calc/grammar/ArrayWork.h"
#include "host/calc/grammar/CallReach.h"

namespace quorin::host::calc {

bool findsCells(std::string_view function);

// The size of what the call finds; `shapes` are those of its arguments. What is not known counts as
// all that a sheet has. Where the arguments are arrays and so many places are found, what is looked
// through in them is added to the work.
ArrayShape foundCells(OfficeWork& work, std::string_view function,
                      std::span<const CallArgument> arguments, std::span<const ArrayShape> shapes,
                      const ExpressionContext& context);

// The size of a reference, as Excel text; empty where it cannot be asked about by itself.
ArrayShape sizeOf(const std::string& excel, const ExpressionContext& context);

}  // namespace quorin::host::calc
