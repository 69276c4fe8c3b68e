// JoinedTruth: truth values that "&" joins to text. Excel writes their name there, Calc their
// number. Pure functions over text in Calc's grammar.
#pragma once

#include <string>
#include <string_view>

namespace quorin::host::calc {

// True if "&" joins an operand to text: `before` is what was written before it, `behind` what
// follows it in the text that is read.
bool isJoined(std::string_view before, std::string_view behind);

// The name of a truth value, and of what may be one.
std::string namedTruth(const std::string& truth);
std::string namedIfTruth(const std::string& cell);

}  // namespace quorin::host::calc
