// Excel's scripting terminology, built once at first use from the table excel.tsv beside this
// file, which is part of the program. Any thread may read it.
#pragma once

#include "script/terms/Terminology.h"

namespace quorin::host {

const script::Terminology& excelTerminology();

}  // namespace quorin::host
