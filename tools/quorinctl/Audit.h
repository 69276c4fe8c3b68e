// Audit: `quorinctl audit`, which reads workbooks whole in private offices, some side by side,
// and writes what is odd in them.
#pragma once

#include "tools/quorinctl/CommandLine.h"

namespace quorin::ctl {

// The exit status: 0, 1 when there is a finding that the command fails on, 2 when a file could not
// be audited or the list not be written, and 128 and the signal's number when one came.
int audit(const AuditCommand& command);

}  // namespace quorin::ctl
