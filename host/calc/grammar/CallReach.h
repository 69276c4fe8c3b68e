// CallReach: which cells a call of an Excel function looks at, beside and among those that its
// arguments name. Pure functions.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/calc/grammar/CalcExpression.h"

namespace quorin::host::calc {

struct CallArgument {
  std::string excel;               // as it stands; empty where it cannot be asked about by itself
  std::string calc;                // the same in Calc's grammar
  std::size_t from = 0, upTo = 0;  // its cells in the reach
  bool isCells = false;            // it is these cells, as they stand
};

// Adds what a function asks for beside the values of the cells it is given.
void addFunction(Reach& reach, std::string_view name);

// Adds the cells that a call looks at beyond its arguments, whose cells were added from there on: a
// range of another size than the first counts from its own first cell.
void addBeyond(Reach& reach, std::string_view name, std::size_t from);

// Leaves out the cells of its arguments that the call cannot come to look at: INDEX takes one row
// and column of a range, VLOOKUP two columns, OFFSET none but those at that distance. Where they
// are calculated, the context is asked for these numbers.
void leaveOut(Reach& reach, std::string_view name, std::span<const CallArgument> arguments,
              const ExpressionContext& context);

}  // namespace quorin::host::calc
