// OfficeFunctions: which functions an office has. Its versions differ, so each is asked for by its
// name, once. Call thread.
#pragma once

#include <map>
#include <string>

#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

class OfficeFunctions {
 public:
  // By Calc's name; any workbook of the office will do.
  bool has(const Workbook& workbook, const std::string& function);

 private:
  std::map<std::string, bool> asked_;
};

}  // namespace quorin::host::calc
