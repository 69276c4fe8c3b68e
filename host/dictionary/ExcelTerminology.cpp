#include "host/dictionary/ExcelTerminology.h"

#include <string_view>

namespace quorin::host {

extern const std::string_view excelTermTable;  // excel.tsv

const script::Terminology& excelTerminology() {
  static const script::Terminology terminology(excelTermTable);
  return terminology;
}

}  // namespace quorin::host
