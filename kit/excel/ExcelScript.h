// ExcelScript: the text of the handler library, put together once at first use. Constant texts for
// any thread.
#pragma once

#include <string>

namespace quorin::ExcelScript {

const std::string& core();    // the cell, range and selection handlers
const std::string& m3();      // formulas, dependents, workbook map, deep evaluation
const std::string& cf();      // highlights
const std::string& reveal();  // reveal and hidden rows and columns
const std::string& perf();    // moving a highlight

// The whole library: the five texts above, joined by line feeds.
const std::string& source();

}  // namespace quorin::ExcelScript
