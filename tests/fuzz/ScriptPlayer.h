// Compiles a text and runs what compiles, within narrow limits, against an application that gives
// good answers, odd ones and errors in turn. The same text always meets the same answers.
#pragma once

#include <string_view>

namespace quorin::fuzz {

// Whether the text compiled. A promise of the engine that does not hold (an error without message
// or outside of the text, a result beside an error) ends the process with a line on standard error.
bool play(std::string_view source);

}  // namespace quorin::fuzz
