// One private office for a whole test program, with workbooks made by the tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "host/calc/CalcSpreadsheet.h"
#include "host/calc/PrivateOffice.h"

namespace quorin::host::calc {

// Starts at first use, ends with the program.
class SharedOffice : public testing::Environment {
 public:
  static CalcSpreadsheet& spreadsheet();
  static PrivateOffice& office();
  void TearDown() override;
};

}  // namespace quorin::host::calc
