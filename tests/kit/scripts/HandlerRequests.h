// What the handlers of the library are asked in the contract suite, and what they answer on every
// spreadsheet: a request is made in a workbook that its predecessors of the same group have left.
#pragma once

#include <string>
#include <vector>

#include "kit/value/JSONValue.h"

namespace quorin {

struct HandlerRequest {
  std::string handler;
  JSONValue::Array arguments;
  // The answer as JSON text, or "error " and the number. "{book}" stands for the workbook's name,
  // "*" for a number that depends on the window.
  std::string answer;
  // Where the user is before; empty: where the request before left them.
  std::string sheet = {}, selection = {};
};

// Each group over knownWorkbook(), freshly opened or as good as that.
std::vector<HandlerRequest> cellRequests();    // where the user is, evaluation, selecting
std::vector<HandlerRequest> rangeRequests();   // values and formulas of ranges
std::vector<HandlerRequest> mapRequests();     // the map of the workbook
std::vector<HandlerRequest> deepRequests();    // deep evaluation
std::vector<HandlerRequest> markRequests();    // highlights
std::vector<HandlerRequest> revealRequests();  // hidden rows and columns, scrolling

}  // namespace quorin
