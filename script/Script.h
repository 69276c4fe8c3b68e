// A compiled AppleScript: what a text becomes once every word and every sentence of it is known.
// Compiling reports all syntax and name errors; calling runs one handler. A script keeps its
// properties and globals from call to call. One thread at a time; only cancel() may come from
// another. Nothing here throws: errors are values, with the numbers and texts of AppleScript.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/value/AppleEvent.h"
#include "script/Application.h"

namespace quorin::script {

struct CompileError {
  int number = -2741;      // -2741 and -2740 for syntax, others as AppleScript numbers them
  std::string message;     // "Expected end of line but found identifier."
  int line = 0;            // 1-based
  std::size_t offset = 0;  // of the offending text in the source, in bytes
  std::size_t length = 0;  // of the offending text, in bytes
  bool operator==(const CompileError&) const = default;
};

struct ScriptError {
  int number = 0;
  std::string message;
  bool operator==(const ScriptError&) const = default;
};

// Exactly one of error and "finished"; a handler that finished may still have no value.
struct ScriptOutcome {
  std::optional<AppleEventDescriptor> result;
  std::optional<ScriptError> error;
};

// What a running script may use before it is stopped. The stack and the depth of data end in
// -2706, the size of one text or list in -108, steps in -128, as if the user had cancelled.
struct ScriptLimits {
  std::uint64_t steps = 0;  // statements and expressions of one call; 0: no limit
  std::size_t stackBytes = std::size_t{2} << 20;
  std::size_t textBytes = std::size_t{256} << 20;
  std::size_t listItems = std::size_t{16} << 20;
};

class Interpreter;  // its properties, globals and the machinery that runs it

class Script {
 public:
  Script(Script&&) noexcept;
  Script& operator=(Script&&) noexcept;
  ~Script();

  // Runs what the event asks for: 'ascr'/'psbr' with the handler's name in 'snam' (any case) and
  // a list of positional arguments in '----', or 'aevt'/'oapp', the run handler.
  ScriptOutcome call(const AppleEvent& event);
  ScriptOutcome call(std::string_view handler, AppleEventDescriptor::Items arguments);
  ScriptOutcome run();

  void setLimits(const ScriptLimits& limits);
  void cancel();  // ends the call that is running with -128; may come from any thread

  std::vector<std::string> handlerNames() const;  // in the order of the source, as spelled there

 private:
  friend std::variant<Script, CompileError> compile(std::string_view, Applications&);
  explicit Script(std::unique_ptr<Interpreter> interpreter);
  std::unique_ptr<Interpreter> interpreter_;
};

// The applications (and their terminologies) must outlive the script.
std::variant<Script, CompileError> compile(std::string_view source, Applications& applications);

}  // namespace quorin::script
