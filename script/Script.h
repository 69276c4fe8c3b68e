// A compiled AppleScript: what a text becomes once every word and every sentence of it is known.
// Compiling reports all syntax and name errors; calling runs one handler. A script keeps its
// properties and globals from call to call. One thread at a time; only cancel() may come from
// another. Nothing here throws: errors are values, with the numbers and texts of AppleScript.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/value/AppleEvent.h"
#include "script/lex/CompileError.h"
#include "script/run/ScriptOutcome.h"
#include "script/terms/Application.h"

namespace quorin::script {

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
