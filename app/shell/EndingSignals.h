// The signals at which the program ends as by Quit. Any thread, while nobody changes how a signal
// is treated.
#pragma once

#include <vector>

namespace quorin {

// Interrupt and termination. Hang-up too, unless this process ignores it: whoever started it then
// wants it to outlive the terminal, as nohup does.
std::vector<int> endingSignals();

}  // namespace quorin
