// The Excel that scripts speak to.
#pragma once

#include <memory>

#include "script/terms/Application.h"

namespace quorin {

// One for each script: the spreadsheet in memory. Any thread.
std::unique_ptr<script::Application> makeExcel();

}  // namespace quorin
