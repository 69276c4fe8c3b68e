// Function names from Calc's stored grammar to Excel's. Pure functions over text.
#pragma once

#include <string>

namespace quorin::host::calc {

// "SUM" for "sum", "NETWORKDAYS" for the name of the add-in's function that does it.
std::string excelFunctionName(const std::string& word);

}  // namespace quorin::host::calc
