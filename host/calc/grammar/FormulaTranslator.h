// Formula text between Calc's own stored grammar and Excel's. Pure functions over text.
//
//   Calc   =SUM($'My Sheet'.A1:B2;{1;2|3;4};A1~B2)
//   Excel  =SUM('My Sheet'!A1:B2,{1,2;3,4},(A1,B2))
//
// In Calc's grammar ";" parts arguments, "." follows a sheet, "~" unites, "!" intersects, and an
// array's columns and rows are parted by ";" and "|".
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/SheetPrefixes.h"

namespace quorin::host::calc {

// A formula as Calc stores it, with "=" and with the braces of an array formula or without, as
// Excel would write it. What has no counterpart there stays as it is. `isSheet` is asked where only
// that tells a reference from a defined name: "Unit.m2" is one unless there is a sheet "Unit".
std::string excelFormula(std::string_view calcFormula, ReferenceStyle style, FormulaCell cell,
                         const IsSheet& isSheet = {});

// The same for many formulas of one workbook. `isSheet` is asked about each sheet once.
class FormulaTranslator {
 public:
  explicit FormulaTranslator(ReferenceStyle style, IsSheet isSheet = {});
  ~FormulaTranslator();

  std::string excelFormula(std::string_view calcFormula, FormulaCell cell);

 private:
  class Translation;
  const std::unique_ptr<Translation> translation_;
};

}  // namespace quorin::host::calc
