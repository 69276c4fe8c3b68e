// Commands: the few that the language answers for its own values, and those sent as events.
#include "kit/value/EventErrors.h"
#include "script/run/Interpreter.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/LocalObjects.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

bool is(const CommandTerm& term, FourCharCode eventClass, FourCharCode eventID) {
  return term.eventClass == eventClass && term.eventID == eventID;
}

bool isGet(const CommandTerm& term) {
  return is(term, fourCharCode("core"), fourCharCode("getd"));
}

bool isCount(const CommandTerm& term) {
  return is(term, fourCharCode("core"), fourCharCode("cnte"));
}

bool isExists(const CommandTerm& term) {
  return is(term, fourCharCode("core"), fourCharCode("doex"));
}

}  // namespace

// Adds the target of the tell, where it is an object, and sends.
std::optional<Value> Interpreter::send(Application& application, AppleEvent event) {
  checkBudgets();
  const Specifier* subject = frame_->target.specifier();
  if (subject && subject->application == &application) {
    const AppleEventDescriptor* direct = event.parameter(keyDirectObject);
    if (!direct || !(*direct == subject->descriptor)) {
      event.attributes.push_back({keySubject, subject->descriptor});
    }
  }
  return sender_.send(application, event);
}

std::optional<Value> Interpreter::runCommand(const Command& command) {
  const CommandTerm& term = *command.term;
  const Restoring<bool> outsideOfFilters(frame_->examining, false);
  Resolved direct;
  if (command.direct) {
    try {
      direct = resolve(*command.direct);
      direct.value = dereference(direct.value);
    } catch (const Failure& failure) {
      // What cannot be got of the script's own values does not exist.
      if (!isExists(term) || failure.number != eventErrors::noSuchObject) throw;
      return false;
    }
  }
  if (isGet(term)) {
    if (!command.direct) return frame_->target;
    return direct.pending ? fetchObject(direct.value) : std::move(direct.value);
  }
  Application* application = direct.value.application();
  if (command.direct && !application) {
    if (std::optional<Value> answer = localCommand(command, direct.value)) return answer;
  }
  if (!application) application = frame_->target.application();
  if (!application) {
    throw Failure{eventErrors::notUnderstood,
                  displayText(command.direct ? direct.value : frame_->target) +
                      " doesn't understand the " + term.term + " message.",
                  direct.value};
  }
  AppleEvent event;
  event.eventClass = term.eventClass;
  event.eventID = term.eventID;
  if (command.direct && !direct.value.as<ApplicationObject>()) {
    event.parameters.push_back({keyDirectObject, toDescriptor(direct.value)});
  }
  for (const auto& [code, expression] : command.parameters) {
    event.parameters.push_back({code, toDescriptor(resolve(*expression).value)});
  }
  return send(*application, std::move(event));
}

std::optional<Value> Interpreter::localCommand(const Command& command, const Value& direct) {
  if (isExists(*command.term)) return true;
  if (!isCount(*command.term)) return std::nullopt;
  return countLocal(command, direct);
}

Value Interpreter::countLocal(const Command& command, const Value& direct) {
  if (!direct.list() && !direct.text() && !direct.record()) {
    throw Failure{eventErrors::notUnderstood,
                  displayText(direct) + " doesn't understand the count message.", direct};
  }
  if (command.parameters.empty()) {
    Selector length;
    length.code = fourCharCode("leng");
    return getPart(direct, length, rules_);
  }
  const Value type = dereference(evaluate(*command.parameters.front().second));
  const auto* constant = type.as<Constant>();
  if (!constant) failCannotCoerce(type, fourCharCode("pcls"));
  Selector elements;
  elements.form = Form::all;
  elements.code = constant->code;
  const Value found = getPart(direct, elements, rules_);
  return static_cast<std::int32_t>(toListItems(found).size());
}

}  // namespace quorin::script
