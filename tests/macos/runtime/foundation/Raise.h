// What Apple's frameworks tell a program that uses them wrongly: exceptions, as they are
// documented, and lines in the log. Tests ask what was raised and logged. Any thread.
#pragma once

#include <string>
#include <vector>

namespace quorin {

// Throws an NSException.
[[noreturn]] void raise(const char* name, const std::string& reason);

// AppKit, WebKit and Carbon's event manager belong to the main thread ("Thread Safety Summary",
// Threading Programming Guide; AppKit raises NSInternalInconsistencyException for windows).
void onMainThread(const char* what);

bool isMainThread();

// How many exceptions were raised so far. Those that a handler swallowed count as well.
int raisedSoFar();

// What NSLog was given so far.
std::vector<std::string> loggedSoFar();

}  // namespace quorin
