// HarmlessFunctions: which functions an expression may call without the user having asked for it.
// Those are known to work out a value of what they are given and of the workbook's own cells, and
// to do nothing else: they ask no server, read no file, run nobody's program and change nothing. A
// function that is not known to be like that is not called. Pure functions over text.
#pragma once

#include <string>
#include <string_view>

namespace quorin::host::calc {

// True if it is one of these, by Excel's name in capitals (plainFunctionName).
bool isHarmless(std::string_view function);

// What the user is told of a call that is not made: "Runs “WEBSERVICE”, so only when you ask."
std::string reachText(std::string_view function);

}  // namespace quorin::host::calc
