#include "tests/fuzz/Promises.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>

namespace quorin::fuzz {

using script::CompileError;
using script::Script;
using script::ScriptOutcome;

void broken(const char* promise, std::string_view source) {
  std::fprintf(stderr, "broken promise: %s\n%.*s\n", promise, static_cast<int>(source.size()),
               source.data());
  std::abort();
}

void check(const CompileError& failure, std::string_view source) {
  if (failure.number == 0) broken("a compile error has a number", source);
  if (failure.message.empty()) broken("a compile error has a message", source);
  if (failure.line < 1) broken("a compile error has a line", source);
  if (failure.offset > source.size() || failure.length > source.size() - failure.offset)
    broken("a compile error lies in the text", source);
}

void check(const ScriptOutcome& outcome, std::string_view source) {
  if (outcome.error && outcome.result) broken("a result or an error", source);
}

bool compileAndRun(std::string_view source, script::Applications& applications,
                   const AppleEventDescriptor::Items& arguments) {
  auto compiled = script::compile(source, applications);
  if (const auto* failure = std::get_if<CompileError>(&compiled)) {
    check(*failure, source);
    return false;
  }
  auto& script = std::get<Script>(compiled);
  script::ScriptLimits limits;
  limits.steps = 5'000;
  limits.textBytes = 200'000;
  limits.listItems = 5'000;
  script.setLimits(limits);
  check(script.run(), source);
  for (const std::string& handler : script.handlerNames()) {
    AppleEventDescriptor::Items given;
    for (std::size_t count = 0; count <= arguments.size(); ++count) {
      if (count > 0) given.push_back(arguments[count - 1]);
      const ScriptOutcome outcome = script.call(handler, given);
      check(outcome, source);
      if (!outcome.error || outcome.error->number != -1721) break;
    }
  }
  return true;
}

}  // namespace quorin::fuzz
