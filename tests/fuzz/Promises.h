// What the engine promises of every text and every run; a fuzzer ends where a promise is broken.
#pragma once

#include <string_view>

#include "script/Script.h"

namespace quorin::fuzz {

// A line with the promise and the text on standard error; then the process ends.
[[noreturn]] void broken(const char* promise, std::string_view source);

void check(const script::CompileError& failure, std::string_view source);
void check(const script::ScriptOutcome& outcome, std::string_view source);

// Compiles the text and runs it and all its handlers, each with as many of the arguments as it
// takes, within narrow limits. True if it compiled.
bool compileAndRun(std::string_view source, script::Applications& applications,
                   const AppleEventDescriptor::Items& arguments);

}  // namespace quorin::fuzz
