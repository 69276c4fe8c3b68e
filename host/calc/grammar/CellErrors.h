// Calc's error codes and Excel's English texts for them.
#pragma once

#include <string>
#include <string_view>

namespace quorin::host::calc {

// The text Excel would show. Codes that only Calc has get the text of the same cause in Excel.
std::string errorText(int code);

// Calc text that gives Excel's ERROR.TYPE of an argument in Calc text: Calc's own function of that
// name gives #N/A for codes that only Calc has.
std::string errorTypeCall(const std::string& argument);

// Excel's number for the error of that text.
int errorType(std::string_view text);

}  // namespace quorin::host::calc
