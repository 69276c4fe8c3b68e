// MirrorNames: the names and tables of one workbook given to another that has the same sheets, for
// text that becomes a reference only when it is calculated. Call thread.
#pragma once

#include "host/calc/CalcWorkbooks.h"

namespace quorin::host::calc {

// Takes the place of all names and tables that `to` has. The columns of a table are known by the
// texts that stand in its first row at that moment.
void copyNames(const Workbook& from, const Workbook& to);

}  // namespace quorin::host::calc
