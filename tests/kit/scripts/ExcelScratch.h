// ExcelScratch: a workbook in a running Excel, filled as a description says and closed without
// saving at the end. Other workbooks are not touched. Used on the runner's thread; what Excel
// refuses is thrown.
#pragma once

#include <string>
#include <string_view>

#include "kit/excel/ScriptRunner.h"
#include "kit/value/JSONValue.h"
#include "tests/fakes/WorkbookDescription.h"

namespace quorin {

class ExcelScratch {
 public:
  // The script that `runner` has to have compiled.
  static std::string_view source();

  ExcelScratch(ScriptRunner& runner, const fakes::WorkbookDescription& description);
  ~ExcelScratch();
  ExcelScratch(const ExcelScratch&) = delete;
  ExcelScratch& operator=(const ExcelScratch&) = delete;

  const std::string& book() const { return book_; }
  void goTo(const std::string& sheet, const std::string& selection);

 private:
  JSONValue ask(const char* handler, JSONValue::Array arguments);
  void fill(const fakes::SheetDescription& sheet);

  ScriptRunner& runner_;
  std::string book_;
};

}  // namespace quorin
