// FunctionWork: what a function of Excel makes of arrays, and how long Calc takes for one value of
// it. Pure.
#pragma once

#include <span>
#include <string_view>

#include "host/calc/grammar/ArrayWork.h"

namespace quorin::host::calc {

// True if the function takes what it is given as a whole, so that its value is one, or so that what
// comes of it is known by other means. Every other one is taken to give a value for each.
bool takesWhole(std::string_view function);

// How many ten millionths of a second Calc takes for one value, with arguments of these shapes.
double stepsOf(std::string_view function, std::span<const ArrayShape> shapes);

// True if it looks for a pattern of which Calc may take seconds for a single value.
bool looksForPattern(std::string_view function);

}  // namespace quorin::host::calc
