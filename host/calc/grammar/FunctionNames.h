// FunctionNames: what Calc's stored grammar and Excel call a function, from one table read both
// ways. Each name stands for one function: what Calc alone has goes by the name that files of
// Excel's formats give it. Pure functions over text.
#pragma once

#include <string>
#include <string_view>

namespace quorin::host::calc {

// Adds Excel's name of a function that Calc names: "SUM" for "sum", "NETWORKDAYS" for the name of
// the add-in's function that does it.
void appendExcelFunctionName(std::string& text, std::string_view calcName);

// Calc's name of a function, in capitals, by Excel's, in any case and with or without the prefix of
// newer functions. What has no other name there keeps its own.
std::string calcFunctionName(std::string_view excelName);

// Excel's name, in capitals and without prefix, in any spelling that files have.
std::string plainFunctionName(std::string_view excelName);

}  // namespace quorin::host::calc
