// Calc's error codes and Excel's English texts for them.
#pragma once

#include <string>

namespace quorin::host::calc {

// The text Excel would show. Codes that only Calc has get the text of the same cause in Excel.
std::string errorText(int code);

}  // namespace quorin::host::calc
