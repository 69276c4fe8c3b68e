// serve: reads requests and writes replies until the input ends or a signal asks to stop.
#pragma once

#include "tools/quorinctl/CommandLine.h"

namespace quorin::ctl {

// The exit status: 0 at the end of input, 2 when the call cannot be served (one line on standard
// error says why), 128 and its number after a signal. Main thread.
int serve(const ServeCommand& command);

}  // namespace quorin::ctl
