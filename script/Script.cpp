#include "script/Script.h"

#include "script/lex/Lexer.h"
#include "script/parse/Parser.h"
#include "script/run/Interpreter.h"

namespace quorin::script {

Script::Script(std::unique_ptr<Interpreter> interpreter) : interpreter_(std::move(interpreter)) {}
Script::Script(Script&&) noexcept = default;
Script& Script::operator=(Script&&) noexcept = default;
Script::~Script() = default;

ScriptOutcome Script::call(const AppleEvent& event) {
  return interpreter_->call(event);
}

ScriptOutcome Script::call(std::string_view handler, AppleEventDescriptor::Items arguments) {
  AppleEvent event;
  event.eventClass = fourCharCode("ascr");
  event.eventID = fourCharCode("psbr");
  event.parameters.push_back(
      {fourCharCode("snam"), AppleEventDescriptor::text(std::string(handler))});
  event.parameters.push_back({keyDirectObject, AppleEventDescriptor::list(std::move(arguments))});
  return call(event);
}

ScriptOutcome Script::run() {
  AppleEvent event;
  event.eventClass = fourCharCode("aevt");
  event.eventID = fourCharCode("oapp");
  return call(event);
}

void Script::setLimits(const ScriptLimits& limits) {
  interpreter_->setLimits(limits);
}

void Script::cancel() {
  interpreter_->cancel();
}

std::vector<std::string> Script::handlerNames() const {
  std::vector<std::string> names;
  for (const Handler& handler : interpreter_->program().handlers) names.push_back(handler.name);
  return names;
}

std::variant<Script, CompileError> compile(std::string_view source, Applications& applications) {
  try {
    Program program = Parser(tokenize(source), applications).parse();
    return Script(std::make_unique<Interpreter>(std::move(program), applications));
  } catch (const SyntaxError& failure) {
    return failure.error;
  }
}

}  // namespace quorin::script
