// MirrorNames: the names and tables of one workbook given to another that has the same sheets, for
// text that becomes a reference only when it is calculated. Call thread.
#pragma once

#include "host/calc/workbook/CalcWorkbooks.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// Takes the place of all names and tables that `to` has. Names of anything but cells are left out:
// no text is a reference to them, and nothing that they say is calculated there. The columns of a
// table are known by the texts that stand in its first row at that moment.
void copyNames(const Workbook& from, const Workbook& to, const CallLimits& limits);

}  // namespace quorin::host::calc
