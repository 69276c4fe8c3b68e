// How Excel's operators treat single values, for the evaluator of the tests.
#pragma once

#include <optional>
#include <string>

#include "host/Spreadsheet.h"

namespace quorin::fakes::formula {

host::CellValue error(const char* text);
bool isError(const host::CellValue& value);
std::string upper(std::string text);  // ASCII letters

std::optional<double> parsedNumber(const std::string& text);
// The value as a number, or the error that stands for "no number".
host::CellValue number(const host::CellValue& value);
std::string text(const host::CellValue& value);  // as "&" joins it
host::CellValue finite(double result);           // #NUM! for what is not
host::CellValue binary(const std::string& sign, const host::CellValue& left,
                       const host::CellValue& right);

}  // namespace quorin::fakes::formula
