// MainThread: work that the office does on its main thread, as it does what the user asks for.
#pragma once

#include <chrono>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <functional>

namespace quorin::host::calc {

// Asks the office to call back from its main thread and does the work in that call: what the office
// is asked for while it calls back, it does on the thread that calls. Not to be called from there.
// False when it has not come back within `patience`, which does not take the work back. Throws what
// the work threw.
bool onMainThread(const css::uno::Reference<css::uno::XComponentContext>& context,
                  std::chrono::milliseconds patience, std::function<void()> work);

}  // namespace quorin::host::calc
