// WorkerMain: the process that audits one workbook for `quorinctl audit`, so that whatever happens
// to it or to its office happens to no other workbook.
#pragma once

#include <filesystem>
#include <string>

#include "kit/value/JSONValue.h"
#include "tools/quorinctl/CommandLine.h"

namespace quorin::ctl {

// On standard output it writes lines: this letter and a short text for the user while it goes on,
// and at last the other letter and the report as JSON.
inline constexpr char progressLetter = 'p';
inline constexpr char reportLetter = 'r';

// The exit status: 0 when a report was written, also one that says why there is none, and 128 and
// the signal's number when one came. It ends with the process that started it.
int auditWorkbook(const AuditWorkbookCommand& command);

// The report of a workbook that could not be audited.
JSONValue failureReport(const std::filesystem::path& file, const std::string& why);

}  // namespace quorin::ctl
