// Function names from Calc's stored grammar to Excel's. Pure functions over text.
#pragma once

#include <string>
#include <string_view>

namespace quorin::host::calc {

// Adds "SUM" for "sum", "NETWORKDAYS" for the name of the add-in's function that does it.
void appendExcelFunctionName(std::string& text, std::string_view word);

}  // namespace quorin::host::calc
