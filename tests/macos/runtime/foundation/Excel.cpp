#include "tests/macos/runtime/foundation/Excel.h"

#include <utility>

#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin {

namespace {

ExcelFactory& factory() {
  static auto& one = *new ExcelFactory;
  return one;
}

}  // namespace

void useExcel(ExcelFactory made) {
  factory() = std::move(made);
}

std::unique_ptr<script::Application> makeExcel() {
  if (factory()) return factory()();
  return std::make_unique<host::ExcelObjectModel>(std::make_unique<fakes::MemorySpreadsheet>());
}

}  // namespace quorin
