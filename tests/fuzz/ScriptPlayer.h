// Compiles a text and runs what compiles, within narrow limits. Two libraries define it, and a
// fuzzer links one of them: quorin_script_player, with an application that gives good answers, odd
// ones and errors in turn, and quorin_excel_player, with Excel's object model over workbooks in
// memory. The same text always meets the same answers.
#pragma once

#include <string_view>

namespace quorin::fuzz {

// True if the text compiled. A promise that does not hold (Promises.h; of the object model: the
// user's workbooks stay open and their cells as they are) ends the process with a line on standard
// error.
bool play(std::string_view source);

}  // namespace quorin::fuzz
