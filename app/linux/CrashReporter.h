// CrashReporter: leaves a report when the process dies of a fault of its own (SIGSEGV, SIGBUS,
// SIGILL, SIGFPE, SIGABRT), on whatever thread, and lets the signal do then what it always does.
//
// The report "Quorin-<time>.ips" names the version, the signal, the threads, and the stack of the
// one that died as offsets into its modules, which addr2line takes. Nothing of the memory is in it.
//
// While it is written nothing can be relied on: only calls that are safe in a signal handler are
// made, and what needs memory was got ready before. One for the process; main thread.
#pragma once

#include <filesystem>
#include <string>

namespace quorin::CrashReporter {

// From now on reports go to the folder, which is made. Threads named later can tell of a stack that
// has overflowed; others cannot, as they have no second one to do it on.
void install(const std::filesystem::path& folder, const std::string& version);

}  // namespace quorin::CrashReporter
