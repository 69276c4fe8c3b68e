// XlsxFile: writes a workbook description as a small .xlsx file, so that a test can have a real
// spreadsheet program open it.
#pragma once

#include <filesystem>

#include "tests/fakes/WorkbookDescription.h"

namespace quorin::fakes {

// A formula with braces, "{=A1:A2*2}", becomes an array formula of the one cell; one whose address
// is a range, "D1:D2", of all its cells. Dates and formats are the caller's own affair: cells carry
// values only. Throws std::runtime_error.
void writeXlsx(const WorkbookDescription& workbook, const std::filesystem::path& file);

}  // namespace quorin::fakes
