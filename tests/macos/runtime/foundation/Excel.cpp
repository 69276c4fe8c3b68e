#include "tests/macos/runtime/foundation/Excel.h"

#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin {

std::unique_ptr<script::Application> makeExcel() {
  return std::make_unique<host::ExcelObjectModel>(std::make_unique<fakes::MemorySpreadsheet>());
}

}  // namespace quorin
