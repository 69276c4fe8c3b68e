// The Excel that scripts speak to.
#pragma once

#include <functional>
#include <memory>

#include "script/terms/Application.h"

namespace quorin {

using ExcelFactory = std::function<std::unique_ptr<script::Application>()>;

// For each script one: a spreadsheet in memory, unless there is another factory. Any thread.
std::unique_ptr<script::Application> makeExcel();

// From now on. Before the first script.
void useExcel(ExcelFactory factory);

}  // namespace quorin
