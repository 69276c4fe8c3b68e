// Chain: expressions worked out one below the other in a scratch workbook, as the handler of deep
// evaluations does it. The workbook is there for as long as the object.
#pragma once

#include <string>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::host::calc {

class Chain {
 public:
  Chain(Spreadsheet& spreadsheet, const std::vector<std::string>& entries)
      : spreadsheet_(spreadsheet), book_(spreadsheet.makeWorkbook()) {
    for (const std::string& entry : entries) {
      ++last_;
      spreadsheet_.setFormula(cell(), "=" + entry);
    }
  }
  ~Chain() {
    try {
      spreadsheet_.closeWorkbook(book_);
    } catch (const SpreadsheetError&) {
      // The office is gone, and the workbook with it.
    }
  }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;

  CellValue value() { return spreadsheet_.values(cell()).cells.front(); }

 private:
  RangeRef cell() {
    return {{book_, spreadsheet_.worksheets(book_).front()}, {{last_, 1, last_, 1}}};
  }

  Spreadsheet& spreadsheet_;
  const std::string book_;
  int last_ = 0;
};

}  // namespace quorin::host::calc
